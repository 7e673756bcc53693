// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The name that the user has given to the device.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Returns the name in machine-info, where settings applications store it, else the host name. The argument
/// is the file's contents, std::nullopt if it does not exist.
std::string deviceName(const std::optional<std::string>& machineInfo, std::string_view hostName);

/// Does the same for the file of the system under the root folder.
std::string readDeviceName(const std::string& root, std::string_view hostName);

/// Does the same with the host name of this machine; always valid UTF-8.
std::string currentDeviceName(const std::string& root);

}  // namespace vorna
