// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The folders that stores keep their files in: subfolders of the application's data directory, which may
/// itself be a link; the subfolder may not.

#include <vorna/base/Result.h>
#include <vorna/platform/FileDescriptor.h>

#include <string>
#include <string_view>
#include <system_error>

namespace vorna {

/// Opens the subfolder of that name.
Result<FileDescriptor, std::error_code> openStoreFolder(const std::string& dataDirectory, const char* name);

/// Opens the subfolder; creates it and the data directory with mode 0700 if they are missing.
Result<FileDescriptor, std::error_code> makeStoreFolder(const std::string& dataDirectory, const char* name);

/// The text as part of a file name, different for different texts: every byte except ASCII letters, digits,
/// '.', '-' and '_' is written as "%XX".
std::string fileNameOf(std::string_view text);

}  // namespace vorna
