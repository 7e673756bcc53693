// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Reads JSON text into Boost.JSON's tree, with the library's rules for what counts as JSON.

#include <vorna/json/DecodingError.h>

#include <boost/json/storage_ptr.hpp>
#include <boost/json/value.hpp>

#include <string_view>
#include <variant>

namespace vorna::json {

/// The tree, or why the text is not JSON with line and column. Strict: UTF-8 without a byte-order mark, one
/// value with nothing after it, nesting up to 512. Of keys that occur twice the last one holds. The
/// tree lives in the given memory, which must outlive it; of its own when none is given. Any thread.
std::variant<boost::json::value, DecodingError> parse(std::string_view text,
                                                      boost::json::storage_ptr memory = {});

/// "a string", "a number", "null": how a value is named in an error.
std::string_view kindName(const boost::json::value& value) noexcept;

}  // namespace vorna::json
