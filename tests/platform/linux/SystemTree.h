// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Folders that stand for the root of a system: the stored ones, and copies that a test may change.

#include <vorna/platform/linux/Environment.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace vorna::tests {

/// The stored system of this name, for reading.
std::string systemTree(std::string_view name);

/// Copies the stored system of this name into the folder.
void copySystemTree(std::string_view name, const std::filesystem::path& folder);

/// An environment with just these variables.
Environment environmentOf(std::initializer_list<std::pair<std::string, std::string>> variables,
                          const std::string& accountHome = "");

/// Looks again and again, until the condition holds or far more time has passed than it ever takes; returns
/// whether it holds.
bool eventually(const std::function<bool()>& condition,
                std::chrono::seconds bound = std::chrono::seconds(30));

}  // namespace vorna::tests
