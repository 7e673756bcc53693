// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What kind of device this is.

#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// The model by the device tree, else the product name by DMI, else the processor architecture. What boards
/// say that nobody has filled in ("To be filled by O.E.M.") counts as nothing. The arguments are the files'
/// contents, absent where there is no such file, and the machine name by uname.
std::string deviceModel(const std::optional<std::string>& deviceTree,
                        const std::optional<std::string>& dmiProductName, std::string_view machine);

/// The same from the files of the system under the root folder.
std::string readDeviceModel(const std::string& root, std::string_view machine);

}  // namespace vorna
