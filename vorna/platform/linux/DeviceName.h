// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the user calls this device.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The name that the settings application keeps in machine-info (the argument is that file's contents, absent
/// where there is none), else the host name.
std::string deviceName(const std::optional<std::string>& machineInfo, std::string_view hostName);

/// The same from the file of the system under the root folder.
std::string readDeviceName(const std::string& root, std::string_view hostName);

}  // namespace vorna
