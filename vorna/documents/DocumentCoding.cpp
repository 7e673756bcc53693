// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/DocumentCoding.h>

#include <vorna/json/TextScanner.h>
#include <vorna/json/Value.h>
#include <vorna/platform/Log.h>
#include <vorna/text/DebugForm.h>

#include <boost/json/monotonic_resource.hpp>

#include <array>
#include <exception>

namespace vorna::document {

namespace {

/// Adds the details that only the text has: the offset, and a number as written.
void locate(json::DecodingError& error, std::string_view text) {
    error.offset = json::findValue(text, error.path);
    if (auto* const number = std::get_if<json::DecodingError::Number>(&error.found); number && error.offset) {
        number->digits = text.substr(*error.offset, json::endOfValue(text, *error.offset) - *error.offset);
    }
}

}  // namespace

const boost::json::value* valueOf(const boost::json::object& object, std::string_view key) noexcept {
    const boost::json::value* const value =
        object.if_contains(boost::json::string_view(key.data(), key.size()));
    return value == nullptr || value->is_null() ? nullptr : value;
}

Read read(const boost::json::value& from, std::optional<std::string>& into) {
    return read(from, into.emplace());
}

Read readText(std::string_view text, void* into, Read (*read)(const boost::json::value& from, void* into)) {
    // The tree lives only during this call: its memory comes in a few large blocks and is released together.
    // The first block need not be cleared.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    std::array<unsigned char, 8192> first;
    boost::json::monotonic_resource memory(first.data(), first.size());
    try {
        Result<boost::json::value, json::DecodingError> tree = json::parse(text, &memory);
        if (!tree) {
            return Unexpected(std::move(tree).error());
        }
        Read result = read(*tree, into);
        if (!result) {
            locate(result.error(), text);
        }
        return result;
    } catch (const std::exception& problem) {
        return Unexpected(json::DecodingError{.found = json::DecodingError::Malformed{problem.what()}});
    }
}

std::vector<std::string> printed(std::span<const MissingField> fields) {
    std::vector<std::string> names = listedNames(fields);
    log::always({text::debugForm(names)});
    return names;
}

}  // namespace vorna::document
