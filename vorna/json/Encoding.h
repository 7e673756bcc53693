// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Encodes records as JSON text. A record type lists its fields once, in the order of encoding:
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
/// That list drives encoding here and decoding in Decoding.h. Empty optional fields are left out. A type that
/// is not such a record is written by a function `Written write(Writer&, const Type&)` in its own namespace,
/// as the documents of screens are, which list their fields in tables (vorna/documents).

#include <vorna/base/Result.h>
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
#include <vector>

namespace vorna::json {

using Encoded = Result<std::string, EncodingError>;

/// A type that lists its fields.
template <class T>
concept Record = requires(T& record) {
    T::visitFields(record, [](std::string_view, auto&) {});
};

template <class T>
concept Arithmetic = std::is_arithmetic_v<T>;

template <class T>
concept Enumeration = std::is_enum_v<T>;

namespace detail {

inline Written write(Writer& writer, const std::string& value) {
    return writer.text(value);
}

template <Arithmetic T>
Written write(Writer& writer, T value) {
    if constexpr (std::same_as<T, bool>) {
        writer.boolean(value);
        return {};
    } else if constexpr (std::floating_point<T>) {
        return writer.number(value);
    } else if constexpr (std::is_unsigned_v<T>) {
        writer.number(static_cast<std::uint64_t>(value));
        return {};
    } else {
        writer.number(static_cast<std::int64_t>(value));
        return {};
    }
}

template <Enumeration T>
Written write(Writer& writer, T value) {
    return write(writer, static_cast<std::underlying_type_t<T>>(value));
}

template <class T, class Compare>
Written write(Writer& writer, const std::map<std::string, T, Compare>& values);
template <class T>
Written write(Writer& writer, const std::vector<T>& values);
template <Record T>
Written write(Writer& writer, const T& record);

template <class T>
Written writeMember(Writer& writer, std::string_view key, const T& value) {
    Written written = writer.key(key);
    if (written) {
        written = write(writer, value);
        if (written) {
            return written;
        }
    }
    writer.failurePath().prepend(key);
    return written;
}

template <class T, class Compare>
Written write(Writer& writer, const std::map<std::string, T, Compare>& values) {
    writer.beginObject();
    for (const auto& [key, value] : values) {
        if (Written written = writeMember(writer, key, value); !written) {
            return written;
        }
    }
    writer.endObject();
    return {};
}

template <class T>
Written write(Writer& writer, const std::vector<T>& values) {
    writer.beginArray();
    for (std::size_t index = 0; index < values.size(); ++index) {
        if (Written written = write(writer, values[index]); !written) {
            writer.failurePath().prepend(index);
            return written;
        }
    }
    writer.endArray();
    return {};
}

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <Record T>
Written write(Writer& writer, const T& record) {
    writer.beginObject();
    Written written;
    T::visitFields(record, [&writer, &written]<class Field>(std::string_view key, const Field& field) {
        if (!written) {
            return;
        }
        if constexpr (!isOptional<Field>) {
            written = writeMember(writer, key, field);
        } else if (field) {
            written = writeMember(writer, key, *field);
        }
    });
    writer.endObject();
    return written;
}

}  // namespace detail

/// Encodes a record, or any other value whose type has a `write` in its namespace. Any thread.
template <class T>
Encoded encode(const T& record) {
    std::string text;
    // The library's records are a little smaller than this; one allocation is enough.
    text.reserve(1024);
    Writer writer(text);
    using detail::write;
    if (Written written = write(writer, record); !written) {
        return Unexpected(EncodingError{std::move(writer.failurePath()), written.error()});
    }
    return text;
}

}  // namespace vorna::json
