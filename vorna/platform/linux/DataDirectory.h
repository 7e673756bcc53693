// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Where the application stores its data.

#include <vorna/platform/linux/Environment.h>

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Returns this program's name in a form that is safe as a folder name.
std::string programName();

/// Returns the text as the name of one folder, with slashes and control characters replaced and what exceeds
/// 255 bytes shortened. "application" for empty text, "." and "..".
std::string folderName(std::string_view text);

/// Returns the name that tells the application's data from others': its bundle identifier as a folder's name,
/// or the program's if it has none that could be one (empty text, "." and "..").
std::string applicationName(const std::optional<std::string>& bundleIdentifier);

/// Returns the application's own folder, named `applicationName`, without creating it. It is in
/// $XDG_DATA_HOME if that is an absolute path, else in .local/share in the user's home folder. std::nullopt
/// if the user has no home folder.
std::optional<std::string> defaultDataDirectory(const std::optional<std::string>& bundleIdentifier,
                                                const Environment& environment = processEnvironment());

}  // namespace vorna
