// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/json/value.hpp>

#include <string>

namespace vorna::schemas {

// For people: two spaces a level, one member or element a line, but an array of mere numbers and strings on
// one line.
[[nodiscard]] std::string prettyJson(const boost::json::value& value);

}  // namespace vorna::schemas
