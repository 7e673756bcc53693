// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Reading whole files.

#include <vorna/base/Result.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace vorna::tools {

/// Returns the bytes of the file. Waits for the writer of a pipe.
[[nodiscard]] Result<std::string, std::error_code> readFile(const std::filesystem::path& path);

/// Returns the bytes of standard input up to its end.
[[nodiscard]] Result<std::string, std::error_code> readStandardInput();

}  // namespace vorna::tools
