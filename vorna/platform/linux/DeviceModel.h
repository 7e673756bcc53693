// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The device's model.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Returns the model from the device tree, else the product name from DMI, else the machine name from uname
/// (the processor architecture). Placeholders such as "To be filled by O.E.M." are ignored. The first two
/// arguments are the contents of the files, std::nullopt if they do not exist.
std::string deviceModel(const std::optional<std::string>& deviceTree,
                        const std::optional<std::string>& dmiProductName, std::string_view machine);

/// Does the same for the files of the system under the root folder.
std::string readDeviceModel(const std::string& root, std::string_view machine);

}  // namespace vorna
