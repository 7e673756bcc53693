// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/Utf8.h>

#include <utf8proc.h>

#include <cstdint>
#include <cstring>

namespace vorna::utf8 {

namespace {

/// Length of the ASCII at the start of the text, checked eight bytes at a time: most text in events is all
/// ASCII.
std::size_t asciiPrefix(std::string_view text) noexcept {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t at = 0;
    for (; text.size() - at >= sizeof(std::uint64_t); at += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        if ((word & highBits) != 0) {
            break;
        }
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80U) {
        ++at;
    }
    return at;
}

/// Length of the well-formed sequence at the start of the text; 0 if there is none.
std::size_t sequenceLength(std::string_view text) noexcept {
    utf8proc_int32_t codepoint = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                     static_cast<utf8proc_ssize_t>(text.size()), &codepoint);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

}  // namespace

bool isValid(std::string_view text) noexcept {
    for (text.remove_prefix(asciiPrefix(text)); !text.empty(); text.remove_prefix(asciiPrefix(text))) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string repaired(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        if (length == 0) {
            result += "\xEF\xBF\xBD";
            text.remove_prefix(1);
        } else {
            result += text.substr(0, length);
            text.remove_prefix(length);
        }
    }
    return result;
}

}  // namespace vorna::utf8
