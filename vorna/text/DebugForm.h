// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Texts in the form of source code, for the console.

#include <string>
#include <string_view>
#include <vector>

namespace vorna::text {

/// Quotes the text and escapes quotation marks, backslashes and control characters.
std::string debugForm(std::string_view text);

/// As in ["heading", "media"], or []. Always one line.
std::string debugForm(const std::vector<std::string>& texts);

}  // namespace vorna::text
