// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/Complaint.h>

#include <boost/json/value.hpp>

#include <initializer_list>
#include <string>
#include <string_view>

namespace vorna::devserver {

/// Reads strict JSON. A complaint says at which byte reading stopped, and why.
[[nodiscard]] Reading<boost::json::value> readJson(std::string_view text);

/// Reads a JSON object that has each of `keys` exactly once and no other key. A complaint names every key
/// that is missing, too many or twice there.
[[nodiscard]] Reading<boost::json::object> readObjectWithExactly(std::initializer_list<std::string_view> keys,
                                                                 std::string_view text);

/// "a string", "a number", ...: what stands there, in words.
[[nodiscard]] std::string_view kindInWords(const boost::json::value& value);

/// "name: expected a string, found a number".
[[nodiscard]] Complaint wrongKind(std::string_view key, std::string_view expected,
                                  const boost::json::value& found);

}  // namespace vorna::devserver
