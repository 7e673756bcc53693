#pragma once

/// Reads JSON text into Boost.JSON's tree, with the library's rules for what counts as JSON.

#include <boost/json/value.hpp>

#include <string>
#include <string_view>
#include <variant>

namespace vorna::json {

struct DecodingError {
    /// Where and what, on one line, as in "paidProducts[1].price: expected a string, found a number".
    std::string description;
};

/// The tree, or why the text is not JSON with line and column. Strict: UTF-8 without a byte-order mark, one
/// value with nothing after it, nesting up to 512. Of keys that occur twice the last one holds. Any thread.
std::variant<boost::json::value, DecodingError> parse(std::string_view text);

/// "a string", "a number", "null": how a value is named in an error.
std::string_view kindName(const boost::json::value& value) noexcept;

}  // namespace vorna::json
