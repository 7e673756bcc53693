// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Where the application keeps what it writes.

#include <vorna/platform/linux/Environment.h>

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The name of this program as it was started, fit to be a folder's name.
std::string programName();

/// The text as the name of one folder: it holds no slash and no control character, and stands neither for a
/// folder itself nor for its parent. Empty text gives "application".
std::string folderName(std::string_view text);

/// The application's own folder: named after the bundle identifier, or the program where there is none, under
/// $XDG_DATA_HOME when that is an absolute path, else under .local/share in the user's home folder. Absent
/// where the user has no home. Makes nothing.
std::optional<std::string> defaultDataDirectory(const std::optional<std::string>& bundleIdentifier,
                                                const Environment& environment = processEnvironment());

}  // namespace vorna
