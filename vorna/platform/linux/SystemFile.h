// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Small files by which the system describes itself, and the folders they stand in.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// The bytes of a regular file, at most its first 64 KiB; absent when it cannot be read. Anything else than a
/// regular file is absent, and never waited for.
std::optional<std::string> readSystemFile(const std::string& path);

/// The same as one value: without the space around it. An empty value is absent.
std::optional<std::string> readSystemValue(const std::string& path);

/// The names in a folder, sorted, without those that begin with a dot. Empty when it cannot be read.
std::vector<std::string> namesInFolder(const std::string& path);

/// The text without ASCII white space and control characters at its ends.
std::string_view trimmed(std::string_view text) noexcept;

}  // namespace vorna
