// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Writer.h>

#include <vorna/text/Utf8.h>

#include <boost/json/serialize.hpp>

#include <array>
#include <charconv>
#include <cmath>

namespace vorna::json {

namespace {

constexpr std::uint8_t needsEscape = 1;
constexpr std::uint8_t needsCheck = 2;

/// The escaping that each byte needs in a JSON string.
constexpr std::array<std::uint8_t, 256> byteKinds = [] {
    std::array<std::uint8_t, 256> kinds{};
    for (std::size_t byte = 0; byte < kinds.size(); ++byte) {
        if (byte < 0x20 || byte == '"' || byte == '\\') {
            kinds[byte] = needsEscape;
        } else if (byte >= 0x80) {
            kinds[byte] = needsCheck;
        }
    }
    return kinds;
}();

}  // namespace

void Writer::separate() {
    if (!first_) {
        output_ += ',';
    }
    first_ = false;
}

void Writer::beginObject() {
    separate();
    output_ += '{';
    first_ = true;
}

void Writer::endObject() {
    output_ += '}';
    first_ = false;
}

void Writer::beginArray() {
    separate();
    output_ += '[';
    first_ = true;
}

void Writer::endArray() {
    output_ += ']';
    first_ = false;
}

Written Writer::quoted(std::string_view text) {
    std::uint8_t kinds = 0;
    for (const char character : text) {
        kinds |= byteKinds[static_cast<unsigned char>(character)];
    }
    if ((kinds & needsCheck) != 0 && !utf8::isValid(text)) {
        return Unexpected(EncodingError::Reason::notUtf8);
    }
    if ((kinds & needsEscape) != 0) {
        output_ += boost::json::serialize(boost::json::string_view(text.data(), text.size()));
        return {};
    }
    output_ += '"';
    output_ += text;
    output_ += '"';
    return {};
}

Written Writer::key(std::string_view key) {
    separate();
    Written written = quoted(key);
    output_ += ':';
    first_ = true;
    return written;
}

Written Writer::text(std::string_view text) {
    separate();
    return quoted(text);
}

template <class Number>
void Writer::digits(Number number) {
    // The longest form is that of a double: sign, 17 digits, point, and "e-308".
    std::array<char, 32> buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    output_.append(buffer.data(), written.ptr);
}

void Writer::number(std::uint64_t number) {
    separate();
    digits(number);
}

void Writer::number(std::int64_t number) {
    separate();
    digits(number);
}

template <class Number>
Written Writer::finite(Number number) {
    separate();
    if (!std::isfinite(number)) {
        return Unexpected(EncodingError::Reason::notFinite);
    }
    digits(number);
    return {};
}

Written Writer::number(double number) {
    return finite(number);
}

Written Writer::number(float number) {
    return finite(number);
}

void Writer::numberText(std::string_view digits) {
    separate();
    output_ += digits;
}

void Writer::boolean(bool value) {
    separate();
    output_ += value ? "true" : "false";
}

void Writer::null() {
    separate();
    output_ += "null";
}

}  // namespace vorna::json
