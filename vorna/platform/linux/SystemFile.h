// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The small files in which the system describes itself, and their folders.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// Reads a regular file, at most its first 64 KiB. std::nullopt if it cannot be read or is not a regular
/// file. Never waits, for a pipe's writer for instance.
std::optional<std::string> readSystemFile(const std::string& path);

/// Reads a regular file and trims its contents. std::nullopt if nothing is left.
std::optional<std::string> readSystemValue(const std::string& path);

/// Returns the names in a folder, sorted, without those that begin with a dot. Empty if it cannot be read.
std::vector<std::string> namesInFolder(const std::string& path);

/// Removes ASCII white space and control characters from both ends.
std::string_view trimmed(std::string_view text) noexcept;

}  // namespace vorna
