// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Texts as a programmer wants to see them in a console.

#include <string>
#include <string_view>
#include <vector>

namespace vorna::text {

/// In quotation marks; quotation marks, backslashes and control characters are escaped with a backslash.
std::string debugForm(std::string_view text);

/// As in ["heading", "media"]; [] when there is none. Always one line.
std::string debugForm(const std::vector<std::string>& texts);

}  // namespace vorna::text
