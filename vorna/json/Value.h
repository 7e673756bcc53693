// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Parses JSON text into a Boost.JSON tree, as strictly as the library requires.

#include <vorna/base/Result.h>
#include <vorna/json/DecodingError.h>
#include <vorna/json/Kind.h>

#include <boost/json/parse_options.hpp>
#include <boost/json/storage_ptr.hpp>
#include <boost/json/value.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace vorna::json {

/// The tree, or an error with its offset. Strict: UTF-8 without a byte-order mark, one value with nothing
/// after it, at most 512 levels deep. The last of duplicate keys wins. The tree is allocated from the given
/// memory resource, which must outlive it, or from the default one. Any thread.
Result<boost::json::value, DecodingError> parse(std::string_view text, boost::json::storage_ptr memory = {});

/// The options with which all of the library's JSON is parsed.
boost::json::parse_options parseOptions();

/// The error of a text that is not JSON: the byte at which that shows, and why.
DecodingError notJson(std::size_t offset, std::string reason);

Kind kindOf(const boost::json::value& value) noexcept;

/// The shortest text of a number that reads back as the same value.
std::string numberText(const boost::json::value& number);

}  // namespace vorna::json
