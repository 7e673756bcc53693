// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/PreferencesDocument.h>

#include <vorna/json/Writer.h>

#include <boost/json/basic_parser_impl.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <system_error>
#include <utility>

namespace vorna {

namespace {

constexpr std::size_t deepestNesting = 512;

/// Builds the tree while Boost.JSON reads the text. Its own tree would not do: numbers lose digits there.
class DocumentReader {
  public:
    using Text = boost::json::string_view;
    using Error = boost::json::error_code;

    static constexpr std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_array_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_key_size = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t max_string_size = std::numeric_limits<std::size_t>::max();

    StoredValue takeRoot() { return std::move(root_); }

    // The names from here on are those that the parser calls.
    // NOLINTBEGIN(readability-identifier-naming)
    static bool on_document_begin(Error&) { return true; }

    static bool on_document_end(Error&) { return true; }

    bool on_object_begin(Error&) { return open(StoredValue::Object()); }

    bool on_object_end(std::size_t, Error&) { return close(); }

    bool on_array_begin(Error&) { return open(StoredValue::Array()); }

    bool on_array_end(std::size_t, Error&) { return close(); }

    bool on_key_part(Text part, std::size_t, Error&) { return gather(part); }

    bool on_key(Text rest, std::size_t, Error&) {
        keys_.push_back(gathered(rest));
        return true;
    }

    bool on_string_part(Text part, std::size_t, Error&) { return gather(part); }

    bool on_string(Text rest, std::size_t, Error&) { return add({gathered(rest)}); }

    bool on_number_part(Text part, Error&) { return gather(part); }

    bool on_int64(std::int64_t, Text rest, Error&) { return addNumber(rest); }

    bool on_uint64(std::uint64_t, Text rest, Error&) { return addNumber(rest); }

    bool on_double(double, Text rest, Error&) { return addNumber(rest); }

    bool on_bool(bool value, Error&) { return add({value}); }

    bool on_null(Error&) { return add({}); }

    static bool on_comment_part(Text, Error&) { return true; }

    static bool on_comment(Text, Error&) { return true; }

    // NOLINTEND(readability-identifier-naming)

  private:
    template <class Container>
    bool open(Container container) {
        open_.push_back({std::move(container)});
        return true;
    }

    bool close() {
        StoredValue complete = std::move(open_.back());
        open_.pop_back();
        return add(std::move(complete));
    }

    bool add(StoredValue value) {
        if (open_.empty()) {
            root_ = std::move(value);
        } else if (auto* const array = std::get_if<StoredValue::Array>(&open_.back().value)) {
            array->push_back(std::move(value));
        } else {
            std::get<StoredValue::Object>(open_.back().value)
                .insert_or_assign(std::move(keys_.back()), std::move(value));
            keys_.pop_back();
        }
        return true;
    }

    bool addNumber(Text rest) { return add({StoredValue::Number{gathered(rest)}}); }

    bool gather(Text part) {
        gathered_.append(part.data(), part.size());
        return true;
    }

    std::string gathered(Text rest) {
        gather(rest);
        return std::exchange(gathered_, {});
    }

    StoredValue root_;
    /// Containers whose end is still to come, and the keys of their members that are being read.
    std::vector<StoredValue> open_;
    std::vector<std::string> keys_;
    std::string gathered_;
};

class DocumentWriter {
  public:
    explicit DocumentWriter(std::string& text) : writer_(text) {}

    bool operator()(const StoredValue& stored) { return std::visit(*this, stored.value); }

    bool operator()(std::monostate) {
        writer_.null();
        return true;
    }

    bool operator()(const std::string& text) { return writer_.text(text).has_value(); }

    bool operator()(bool value) {
        writer_.boolean(value);
        return true;
    }

    bool operator()(const StoredValue::Number& number) {
        writer_.numberText(number.digits);
        return true;
    }

    bool operator()(const StoredValue::Array& array) {
        writer_.beginArray();
        for (const StoredValue& element : array) {
            if (!(*this)(element)) {
                return false;
            }
        }
        writer_.endArray();
        return true;
    }

    bool operator()(const StoredValue::Object& object) {
        writer_.beginObject();
        for (const auto& [key, member] : object) {
            if (!writer_.key(key) || !(*this)(member)) {
                return false;
            }
        }
        writer_.endObject();
        return true;
    }

  private:
    json::Writer writer_;
};

/// Makes PreferenceValue out of StoredValue.
struct ToPreference {
    std::optional<PreferenceValue> operator()(const StoredValue& stored) const {
        return std::visit(*this, stored.value);
    }

    std::optional<PreferenceValue> operator()(std::monostate) const { return std::nullopt; }

    std::optional<PreferenceValue> operator()(const std::string& text) const { return PreferenceValue{text}; }

    std::optional<PreferenceValue> operator()(bool value) const { return PreferenceValue{value}; }

    std::optional<PreferenceValue> operator()(const StoredValue::Number& number) const {
        const char* const begin = number.digits.data();
        const char* const end = begin + number.digits.size();
        if (number.digits.find_first_of(".eE") == std::string::npos) {
            std::int64_t integer = 0;
            if (std::from_chars(begin, end, integer).ec == std::errc()) {
                return PreferenceValue{integer};
            }
        }
        // Also an integer that is too large for its own kind.
        double real = 0;
        if (std::from_chars(begin, end, real).ec == std::errc()) {
            return PreferenceValue{real};
        }
        return std::nullopt;
    }

    std::optional<PreferenceValue> operator()(const StoredValue::Array& array) const {
        PreferenceValue::Array values;
        values.reserve(array.size());
        for (const StoredValue& element : array) {
            std::optional<PreferenceValue> value = (*this)(element);
            if (!value) {
                return std::nullopt;
            }
            values.push_back(std::move(*value));
        }
        return PreferenceValue{std::move(values)};
    }

    std::optional<PreferenceValue> operator()(const StoredValue::Object& object) const {
        PreferenceValue::Dictionary values;
        for (const auto& [key, member] : object) {
            std::optional<PreferenceValue> value = (*this)(member);
            if (!value) {
                return std::nullopt;
            }
            values.emplace_hint(values.end(), key, std::move(*value));
        }
        return PreferenceValue{std::move(values)};
    }
};

template <class Number>
std::string shortestDigits(Number number) {
    // The longest is that of a double: sign, 17 digits, point, and "e-308".
    std::array<char, 32> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init): to_chars fills it
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

/// Makes StoredValue out of PreferenceValue.
struct ToStored {
    /// Containers around the value.
    std::size_t depth = 0;

    std::optional<StoredValue> operator()(PreferenceValue value) const {
        return std::visit(*this, std::move(value.value));
    }

    std::optional<StoredValue> operator()(std::string text) const { return StoredValue{std::move(text)}; }

    std::optional<StoredValue> operator()(bool value) const { return StoredValue{value}; }

    std::optional<StoredValue> operator()(std::int64_t integer) const {
        return StoredValue{StoredValue::Number{shortestDigits(integer)}};
    }

    std::optional<StoredValue> operator()(double real) const {
        if (!std::isfinite(real)) {
            return std::nullopt;
        }
        std::string digits = shortestDigits(real);
        if (digits.find_first_of(".e") == std::string::npos) {
            // It would be read again as an integer.
            digits += ".0";
        }
        return StoredValue{StoredValue::Number{std::move(digits)}};
    }

    std::optional<StoredValue> operator()(PreferenceValue::Array array) const {
        if (depth == deepestNesting) {
            return std::nullopt;
        }
        StoredValue::Array values;
        values.reserve(array.size());
        for (PreferenceValue& element : array) {
            std::optional<StoredValue> value = ToStored{depth + 1}(std::move(element));
            if (!value) {
                return std::nullopt;
            }
            values.push_back(std::move(*value));
        }
        return StoredValue{std::move(values)};
    }

    std::optional<StoredValue> operator()(PreferenceValue::Dictionary dictionary) const {
        if (depth == deepestNesting) {
            return std::nullopt;
        }
        StoredValue::Object values;
        for (PreferenceValue::Dictionary::value_type& entry : dictionary) {
            std::optional<StoredValue> value = ToStored{depth + 1}(std::move(entry.second));
            if (!value) {
                return std::nullopt;
            }
            values.emplace_hint(values.end(), entry.first, std::move(*value));
        }
        return StoredValue{std::move(values)};
    }
};

}  // namespace

std::optional<PreferencesDocument> readPreferencesDocument(std::string_view text) {
    boost::json::parse_options options;
    options.max_depth = deepestNesting;
    try {
        boost::json::basic_parser<DocumentReader> parser(options);
        boost::json::error_code error;
        constexpr bool moreIsToCome = false;
        const std::size_t read = parser.write_some(moreIsToCome, text.data(), text.size(), error);
        if (error || read < text.size()) {
            return std::nullopt;
        }
        StoredValue root = parser.handler().takeRoot();
        if (auto* const entries = std::get_if<StoredValue::Object>(&root.value)) {
            return std::move(*entries);
        }
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): no memory for it, so not readable
    }
    return std::nullopt;
}

std::optional<std::string> writePreferencesDocument(const PreferencesDocument& document) {
    std::string text;
    if (!DocumentWriter(text)(document)) {
        return std::nullopt;
    }
    text += '\n';
    return text;
}

std::optional<PreferenceValue> preferenceValue(const StoredValue& stored) {
    return ToPreference()(stored);
}

std::optional<StoredValue> storedValue(PreferenceValue value) {
    constexpr std::size_t withinTheDocument = 1;
    return ToStored{withinTheDocument}(std::move(value));
}

}  // namespace vorna
