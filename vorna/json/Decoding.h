// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Decodes JSON text into records, driven by the same list of fields as encoding (see Encoding.h). Every
/// field that is not optional is required; null counts as absent for those that are; unknown keys are
/// ignored. An error in a record has a path but no offset. The documents of screens have defaults and offsets
/// and are decoded from tables (vorna/documents).

#include <vorna/base/Result.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/Encoding.h>
#include <vorna/json/Value.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/string.hpp>

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorna::json {

template <class T>
using Decoded = Result<T, DecodingError>;

template <class T>
concept Integer = std::integral<T> && !std::same_as<T, bool>;

namespace detail {

/// Success, or the error, whose path grows while the recursion unwinds.
using Read = Result<void, DecodingError>;

inline Unexpected<DecodingError> mismatch(std::string_view expected, const boost::json::value& found) {
    return Unexpected(DecodingError{.expected = expected, .found = kindOf(found)});
}

inline Read read(const boost::json::value& from, std::string& into) {
    const boost::json::string* const text = from.if_string();
    if (text == nullptr) {
        return mismatch("a string", from);
    }
    into.assign(text->data(), text->size());
    return {};
}

inline Read read(const boost::json::value& from, bool& into) {
    const bool* const value = from.if_bool();
    if (value == nullptr) {
        return mismatch("a boolean", from);
    }
    into = *value;
    return {};
}

template <std::floating_point T>
Read read(const boost::json::value& from, T& into) {
    if (!from.is_number()) {
        return mismatch("a number", from);
    }
    into = from.to_number<T>();
    return {};
}

template <Integer T>
constexpr std::string_view integerName() {
    switch (sizeof(T)) {
    case 1:
        return std::unsigned_integral<T> ? "an unsigned 8-bit integer" : "an 8-bit integer";
    case 2:
        return std::unsigned_integral<T> ? "an unsigned 16-bit integer" : "a 16-bit integer";
    case 4:
        return std::unsigned_integral<T> ? "an unsigned 32-bit integer" : "a 32-bit integer";
    default:
        return std::unsigned_integral<T> ? "an unsigned 64-bit integer" : "a 64-bit integer";
    }
}

/// An integer may also be written with a fraction of zero or an exponent, as 5.0 or 5e0.
template <Integer T>
Read read(const boost::json::value& from, T& into) {
    if (!from.is_number()) {
        return mismatch(integerName<T>(), from);
    }
    if (const std::int64_t* const number = from.if_int64(); number != nullptr && std::in_range<T>(*number)) {
        into = static_cast<T>(*number);
        return {};
    }
    if (const std::uint64_t* const number = from.if_uint64();
        number != nullptr && std::in_range<T>(*number)) {
        into = static_cast<T>(*number);
        return {};
    }
    if (const double* const number = from.if_double(); number != nullptr && std::trunc(*number) == *number) {
        // One more than the largest value is a power of two and so exact as a double; the largest itself is
        // not. Where a double cannot represent every integer, the smallest may also result from a value just
        // below it.
        const double end = std::ldexp(1.0, std::numeric_limits<T>::digits);
        const auto smallest = static_cast<double>(std::numeric_limits<T>::min());
        constexpr bool isExact = std::numeric_limits<T>::digits <= std::numeric_limits<double>::digits;
        const bool isLargeEnough =
            isExact || std::is_unsigned_v<T> ? *number >= smallest : *number > smallest;
        if (isLargeEnough && *number < end) {
            into = static_cast<T>(*number);
            return {};
        }
    }
    return Unexpected(
        DecodingError{.expected = integerName<T>(), .found = DecodingError::Number{numberText(from)}});
}

/// An enumeration is decoded from its number; `isKnownValue`, in the type's namespace, says which are valid.
template <Enumeration T>
Read read(const boost::json::value& from, T& into) {
    std::underlying_type_t<T> number{};
    Read result = read(from, number);
    if (result && isKnownValue(static_cast<T>(number))) {
        into = static_cast<T>(number);
        return result;
    }
    constexpr std::string_view expected = "one of the known numbers";
    if (!result) {
        result.error().expected = expected;
        return result;
    }
    return Unexpected(
        DecodingError{.expected = expected, .found = DecodingError::Number{std::to_string(number)}});
}

template <class T, class Compare>
Read read(const boost::json::value& from, std::map<std::string, T, Compare>& into);
template <class T>
Read read(const boost::json::value& from, std::vector<T>& into);
template <Record T>
Read read(const boost::json::value& from, T& into);

template <class T, class Compare>
Read read(const boost::json::value& from, std::map<std::string, T, Compare>& into) {
    const boost::json::object* const object = from.if_object();
    if (object == nullptr) {
        return mismatch("an object", from);
    }
    for (const auto& member : *object) {
        std::string key(member.key().data(), member.key().size());
        T value{};
        if (Read result = read(member.value(), value); !result) {
            result.error().path.prepend(std::string_view(key));
            return result;
        }
        into.insert_or_assign(std::move(key), std::move(value));
    }
    return {};
}

template <class T>
Read read(const boost::json::value& from, std::vector<T>& into) {
    const boost::json::array* const array = from.if_array();
    if (array == nullptr) {
        return mismatch("an array", from);
    }
    into.reserve(array->size());
    for (std::size_t index = 0; index < array->size(); ++index) {
        if (Read result = read((*array)[index], into.emplace_back()); !result) {
            result.error().path.prepend(index);
            return result;
        }
    }
    return {};
}

template <Record T>
Read read(const boost::json::value& from, T& into) {
    const boost::json::object* const object = from.if_object();
    if (object == nullptr) {
        return mismatch("an object", from);
    }
    Read result;
    T::visitFields(into, [&]<class Field>(std::string_view key, Field& field) {
        if (!result) {
            return;
        }
        const boost::json::value* const value =
            object->if_contains(boost::json::string_view(key.data(), key.size()));
        if constexpr (isOptional<Field>) {
            field.reset();
            if (value != nullptr && !value->is_null()) {
                result = read(*value, field.emplace());
            }
        } else if (value == nullptr) {
            result = Unexpected(DecodingError{.expected = "a value", .found = DecodingError::Missing()});
        } else {
            result = read(*value, field);
        }
        if (!result) {
            result.error().path.prepend(key);
        }
    });
    return result;
}

}  // namespace detail

/// Decodes a record from a tree that has already been parsed.
template <Record T>
Decoded<T> decodeTree(const boost::json::value& tree) {
    T record;
    if (detail::Read result = detail::read(tree, record); !result) {
        return Unexpected(std::move(result).error());
    }
    return record;
}

/// Any thread.
template <Record T>
Decoded<T> decode(std::string_view text) {
    return parse(text).and_then([](const boost::json::value& tree) { return decodeTree<T>(tree); });
}

}  // namespace vorna::json
