// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Which version of the system this is.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The version that os-release states (the argument is that file's contents, absent where there is none).
/// Systems that are never released but only updated state none; the kernel's release stands for it there.
std::string osVersion(const std::optional<std::string>& osRelease, std::string_view kernelRelease);

/// The same from the file of the system under the root folder: /etc/os-release, or /usr/lib/os-release where
/// the former does not exist.
std::string readOsVersion(const std::string& root, std::string_view kernelRelease);

}  // namespace vorna
