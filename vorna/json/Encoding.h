// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Turns a record into JSON text. A record type lists its fields once, in the order of encoding:
///
///     struct Point {
///         std::uint64_t x = 0;
///         std::optional<std::string> label;
///
///         template <class Self, class Visit>
///         static void visitFields(Self& self, Visit&& visit) {
///             visit("x", self.x);
///             visit("label", self.label);
///         }
///     };
///
/// and that list drives encoding here and decoding in Decoding.h. An optional field that is empty is left
/// out. A type that is no such record is written by a function `write(Writer&, const Type&)` in its own
/// namespace; so are the documents of screens, which list their fields in tables (vorna/documents).

#include <vorna/json/EncodingError.h>
#include <vorna/json/Writer.h>

#include <concepts>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace vorna::json {

/// The JSON text, or why there is none.
using Encoded = std::variant<std::string, EncodingError>;

/// A type that lists its fields.
template <class T>
concept Record = requires(T& record) {
    T::visitFields(record, [](std::string_view, auto&) {});
};

namespace detail {

inline bool write(Writer& writer, const std::string& value) {
    return writer.text(value);
}

template <class T>
requires std::is_arithmetic_v<T>

bool write(Writer& writer, T value) {
    if constexpr (std::same_as<T, bool>) {
        writer.boolean(value);
        return true;
    } else if constexpr (std::floating_point<T>) {
        return writer.number(value);
    } else if constexpr (std::is_unsigned_v<T>) {
        writer.number(static_cast<std::uint64_t>(value));
        return true;
    } else {
        writer.number(static_cast<std::int64_t>(value));
        return true;
    }
}

template <class T>
requires std::is_enum_v<T>

bool write(Writer& writer, T value) {
    return write(writer, static_cast<std::underlying_type_t<T>>(value));
}

template <class T, class Compare>
bool write(Writer& writer, const std::map<std::string, T, Compare>& values);
template <class T>
bool write(Writer& writer, const std::vector<T>& values);
template <Record T>
bool write(Writer& writer, const T& record);

template <class T>
bool writeUnder(Writer& writer, std::string_view key, const T& value) {
    if (writer.key(key) && write(writer, value)) {
        return true;
    }
    writer.problemIsUnder(key);
    return false;
}

template <class T, class Compare>
bool write(Writer& writer, const std::map<std::string, T, Compare>& values) {
    writer.beginObject();
    for (const auto& [key, value] : values) {
        if (!writeUnder(writer, key, value)) {
            return false;
        }
    }
    writer.endObject();
    return true;
}

template <class T>
bool write(Writer& writer, const std::vector<T>& values) {
    writer.beginArray();
    for (std::size_t index = 0; index < values.size(); ++index) {
        if (!write(writer, values[index])) {
            writer.problemIsUnder("[" + std::to_string(index) + "]");
            return false;
        }
    }
    writer.endArray();
    return true;
}

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <Record T>
bool write(Writer& writer, const T& record) {
    writer.beginObject();
    bool fine = true;
    T::visitFields(record, [&writer, &fine]<class Field>(std::string_view key, const Field& field) {
        if (!fine) {
            return;
        }
        if constexpr (isOptional<Field>) {
            fine = !field || writeUnder(writer, key, *field);
        } else {
            fine = writeUnder(writer, key, field);
        }
    });
    writer.endObject();
    return fine;
}

}  // namespace detail

/// Encodes a record, or any other value that a `write` is found for beside its type. Any thread.
template <class T>
Encoded encode(const T& record) {
    std::string text;
    // Records of this library are a little under this size; one allocation serves.
    text.reserve(1024);
    Writer writer(text);
    using detail::write;
    if (!write(writer, record)) {
        return EncodingError{writer.problem()};
    }
    return text;
}

}  // namespace vorna::json
