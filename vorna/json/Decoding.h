// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Turns JSON text into a record, driven by the same list of fields as encoding (see Encoding.h). Every field
/// that is not optional must be there; a null counts as absent; keys that the record does not know are
/// ignored. An error tells the path to the value, but no position. The documents of screens have defaults and
/// positions and are decoded from tables (vorna/documents).

#include <vorna/json/DecodingError.h>
#include <vorna/json/Encoding.h>
#include <vorna/json/Value.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/string.hpp>

#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace vorna::json {

/// The record, or where and why the text is none.
template <class T>
using Decoded = std::variant<T, DecodingError>;

namespace detail {

/// Empty when all went well; otherwise what is wrong, preceded by its place while the recursion unwinds.
struct Problem {
    std::string place;
    std::string what;

    explicit operator bool() const noexcept { return !what.empty(); }

    void isUnder(std::string_view key) {
        const bool joined = place.empty() || place.front() == '[';
        place.insert(0, std::string(key) + (joined ? "" : "."));
    }
};

inline Problem expected(std::string_view kind, const boost::json::value& found) {
    return {{}, "expected " + std::string(kind) + ", found " + std::string(kindName(found))};
}

inline Problem read(const boost::json::value& from, std::string& into) {
    const boost::json::string* const text = from.if_string();
    if (text == nullptr) {
        return expected("a string", from);
    }
    into.assign(text->data(), text->size());
    return {};
}

inline Problem read(const boost::json::value& from, bool& into) {
    const bool* const value = from.if_bool();
    if (value == nullptr) {
        return expected("a boolean", from);
    }
    into = *value;
    return {};
}

template <class T>

requires std::is_floating_point_v<T> Problem read(const boost::json::value& from, T& into) {
    if (!from.is_number()) {
        return expected("a number", from);
    }
    into = from.to_number<T>();
    return {};
}

/// An integer may also be written with a fraction of zero or an exponent, as 5.0 or 5e0.
template <class T>

requires(std::is_integral_v<T> && !std::is_same_v<T, bool>) Problem
    read(const boost::json::value& from, T& into) {
    if (!from.is_number()) {
        return expected("an integer", from);
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
        // One more than the largest value is a power of two and so exact as a double; the largest is not.
        // Where a double cannot hold every integer, the smallest may stand for one below it as well.
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
    return {{}, "expected an integer in range, found another number"};
}

/// An enumeration is decoded from its number; `isKnownValue`, found beside the type, says which numbers are.
template <class T>

requires std::is_enum_v<T> Problem read(const boost::json::value& from, T& into) {
    std::underlying_type_t<T> number{};
    if (Problem problem = read(from, number)) {
        return problem;
    }
    if (!isKnownValue(static_cast<T>(number))) {
        return {{}, "expected one of the known numbers, found " + std::to_string(number)};
    }
    into = static_cast<T>(number);
    return {};
}

template <class T, class Compare>
Problem read(const boost::json::value& from, std::map<std::string, T, Compare>& into);
template <class T>
Problem read(const boost::json::value& from, std::vector<T>& into);
template <Record T>
Problem read(const boost::json::value& from, T& into);

template <class T, class Compare>
Problem read(const boost::json::value& from, std::map<std::string, T, Compare>& into) {
    const boost::json::object* const object = from.if_object();
    if (object == nullptr) {
        return expected("an object", from);
    }
    for (const auto& member : *object) {
        std::string key(member.key().data(), member.key().size());
        T value{};
        if (Problem problem = read(member.value(), value)) {
            problem.isUnder(key);
            return problem;
        }
        into.insert_or_assign(std::move(key), std::move(value));
    }
    return {};
}

template <class T>
Problem read(const boost::json::value& from, std::vector<T>& into) {
    const boost::json::array* const array = from.if_array();
    if (array == nullptr) {
        return expected("an array", from);
    }
    into.reserve(array->size());
    for (std::size_t index = 0; index < array->size(); ++index) {
        if (Problem problem = read((*array)[index], into.emplace_back())) {
            problem.isUnder("[" + std::to_string(index) + "]");
            return problem;
        }
    }
    return {};
}

template <Record T>
Problem read(const boost::json::value& from, T& into) {
    const boost::json::object* const object = from.if_object();
    if (object == nullptr) {
        return expected("an object", from);
    }
    Problem problem;
    T::visitFields(into, [&]<class Field>(std::string_view key, Field& field) {
        if (problem) {
            return;
        }
        const boost::json::value* const value =
            object->if_contains(boost::json::string_view(key.data(), key.size()));
        if constexpr (isOptional<Field>) {
            field.reset();
            if (value != nullptr && !value->is_null()) {
                problem = read(*value, field.emplace());
            }
        } else if (value == nullptr) {
            problem.what = "missing";
        } else {
            problem = read(*value, field);
        }
        if (problem) {
            problem.isUnder(key);
        }
    });
    return problem;
}

}  // namespace detail

/// Decodes a record out of a tree that has been parsed already.
template <Record T>
Decoded<T> decodeTree(const boost::json::value& tree) {
    T record;
    if (const detail::Problem problem = detail::read(tree, record)) {
        DecodingError error;
        error.description = problem.place.empty() ? problem.what : problem.place + ": " + problem.what;
        error.path = problem.place;
        return error;
    }
    return record;
}

/// Any thread.
template <Record T>
Decoded<T> decode(std::string_view text) {
    std::variant<boost::json::value, DecodingError> tree = parse(text);
    if (DecodingError* const error = std::get_if<DecodingError>(&tree)) {
        return std::move(*error);
    }
    return decodeTree<T>(std::get<boost::json::value>(tree));
}

}  // namespace vorna::json
