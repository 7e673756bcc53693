// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Root folders of systems: stored ones, and copies that a test may change.

#include <vorna/platform/linux/Environment.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace vorna::tests {

/// Returns the root of the stored system of this name. Read-only.
std::string systemTree(std::string_view name);

/// Copies the stored system of this name into the folder.
void copySystemTree(std::string_view name, const std::filesystem::path& folder);

/// Returns an environment with only these variables.
Environment environmentOf(std::initializer_list<std::pair<std::string, std::string>> variables,
                          const std::string& accountHome = "");

/// Polls until the condition holds or a generous time is up. Returns whether it holds.
bool eventually(const std::function<bool()>& condition,
                std::chrono::seconds bound = std::chrono::seconds(30));

}  // namespace vorna::tests
