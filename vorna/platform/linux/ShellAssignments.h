// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Files of shell-like assignments, such as os-release and machine-info.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Returns the value last assigned to the name, unquoted; nothing is expanded. std::nullopt if the name is
/// not assigned or its value is empty.
std::optional<std::string> assignedValue(std::string_view contents, std::string_view name);

}  // namespace vorna
