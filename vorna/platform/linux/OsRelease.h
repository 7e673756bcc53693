// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The operating system's version.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Returns VERSION_ID of os-release, else the kernel's release: rolling distributions have no version. The
/// argument is the file's contents, std::nullopt if it does not exist.
std::string osVersion(const std::optional<std::string>& osRelease, std::string_view kernelRelease);

/// Does the same for the system under the root folder: /etc/os-release, or /usr/lib/os-release if the former
/// does not exist.
std::string readOsVersion(const std::string& root, std::string_view kernelRelease);

/// Does the same with the release of this machine's kernel; always valid UTF-8.
std::string currentOsVersion(const std::string& root);

}  // namespace vorna
