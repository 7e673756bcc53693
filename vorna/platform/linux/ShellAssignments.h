// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Files of assignments in the shell's manner, such as os-release and machine-info.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The value last assigned to the name, with quotes and backslashes undone; nothing is expanded. Absent when
/// the name is not assigned or its value is empty.
std::optional<std::string> assignedValue(std::string_view contents, std::string_view name);

}  // namespace vorna
