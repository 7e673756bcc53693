// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/DocumentCoding.h>

#include <vorna/json/Position.h>
#include <vorna/json/Value.h>
#include <vorna/platform/Log.h>
#include <vorna/text/DebugForm.h>

#include <boost/json/monotonic_resource.hpp>

#include <array>
#include <cmath>
#include <exception>

namespace vorna::document {

namespace {

constexpr std::string_view anInteger = "an integer of at most 64 bits";

/// As it is written, unless somebody wrote a very long one.
std::string numberText(std::string_view text, std::size_t at) {
    constexpr std::size_t longest = 40;
    const std::string_view digits = text.substr(at, json::behindValue(text, at) - at);
    return "the number " + std::string(digits.substr(0, longest)) + (digits.size() > longest ? "..." : "");
}

/// The fault in words, with the place that it has in the text.
json::DecodingError located(std::string_view text, const Fault& fault) {
    const std::vector<json::PathStep> path(fault.wayUp.rbegin(), fault.wayUp.rend());
    const std::size_t at = json::findValue(text, path).value_or(0);
    const json::Kind kind = json::kindAt(text, at);
    const json::Position position = json::positionAt(text, at);

    json::DecodingError error;
    error.path = json::pathText(path);
    error.expected = fault.expected;
    error.found = fault.expected == anInteger && kind == json::Kind::number ? numberText(text, at)
                                                                            : std::string(kindName(kind));
    error.line = position.line;
    error.column = position.column;
    error.description = "line " + std::to_string(error.line) + ", column " + std::to_string(error.column) +
                        ": " + error.path + (error.path.empty() ? "" : ": ") + "expected " + error.expected +
                        ", found " + error.found;
    return error;
}

}  // namespace

const boost::json::value* valueUnder(const boost::json::object& object, std::string_view key) noexcept {
    const boost::json::value* const value =
        object.if_contains(boost::json::string_view(key.data(), key.size()));
    return value == nullptr || value->is_null() ? nullptr : value;
}

bool read(const boost::json::value& from, std::string& into, Fault& fault) {
    const boost::json::string* const text = from.if_string();
    if (text == nullptr) {
        fault.expected = "a string";
        return false;
    }
    into.assign(text->data(), text->size());
    return true;
}

bool read(const boost::json::value& from, std::optional<std::string>& into, Fault& fault) {
    return read(from, into.emplace(), fault);
}

bool read(const boost::json::value& from, std::int64_t& into, Fault& fault) {
    if (const std::int64_t* const number = from.if_int64()) {
        into = *number;
        return true;
    }
    // With a fraction of zero or an exponent, as in 5.0 or 5e0. At 2 to the 63rd and beyond, on both sides, a
    // double may stand for an integer that 64 bits do not hold.
    constexpr double end = 0x1p63;
    if (const double* const number = from.if_double();
        number != nullptr && std::trunc(*number) == *number && std::abs(*number) < end) {
        into = static_cast<std::int64_t>(*number);
        return true;
    }
    fault.expected = anInteger;
    return false;
}

bool read(const boost::json::value& from, std::vector<std::string>& into, Fault& fault) {
    const boost::json::array* const array = from.if_array();
    if (array == nullptr) {
        fault.expected = "an array";
        return false;
    }
    into.reserve(array->size());
    for (std::size_t index = 0; index < array->size(); ++index) {
        if (!read((*array)[index], into.emplace_back(), fault)) {
            fault.wayUp.emplace_back(index);
            return false;
        }
    }
    return true;
}

std::optional<json::DecodingError> readText(std::string_view text, void* into,
                                            bool (*read)(const boost::json::value& from, void* into,
                                                         Fault& fault)) {
    // A tree lives for the length of this call: its memory comes in few large pieces and goes at one go. The
    // first piece need not be cleared.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    std::array<unsigned char, 8192> first;
    boost::json::monotonic_resource memory(first.data(), first.size());
    try {
        std::variant<boost::json::value, json::DecodingError> tree = json::parse(text, &memory);
        if (auto* const error = std::get_if<json::DecodingError>(&tree)) {
            return std::move(*error);
        }
        Fault fault;
        if (!read(std::get<boost::json::value>(tree), into, fault)) {
            return located(text, fault);
        }
        return std::nullopt;
    } catch (const std::exception& problem) {
        json::DecodingError error;
        error.description = problem.what();
        return error;
    }
}

void print(const std::vector<std::string>& names) {
    log::always({text::debugForm(names)});
}

}  // namespace vorna::document
