// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Strict JSON as clients and developers send it.

#include <tools/devserver/DocumentError.h>
#include <vorna/base/Result.h>

#include <boost/json/value.hpp>

#include <initializer_list>
#include <string_view>

namespace vorna::devserver {

/// Parses strict JSON.
[[nodiscard]] Result<boost::json::value, DocumentError> readJson(std::string_view text);

/// Parses a JSON object that has each of `keys` exactly once and no other key.
[[nodiscard]] Result<boost::json::object, DocumentError>
readObjectWithExactly(std::initializer_list<std::string_view> keys, std::string_view text);

/// The error of finding `found` where something else was expected; `key` is empty for the whole document.
[[nodiscard]] WrongValue wrongKind(std::string_view key, std::string_view expected,
                                   const boost::json::value& found);

}  // namespace vorna::devserver
