// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/DeviceModel.h>

#include <vorna/platform/linux/SystemFile.h>

#include <strings.h>

#include <algorithm>
#include <array>

namespace vorna {

namespace {

/// In firmware whose board maker has not set the product name.
constexpr std::array placeholders = {
    "To be filled by O.E.M.",
    "To be filled by OEM",
    "System Product Name",
    "Product Name",
    "System Name",
    "Default string",
    "Default",
    "Type1ProductConfigId",
    "Not Specified",
    "Not Applicable",
    "Not Available",
    "Undefined",
    "Unknown",
    "Invalid",
    "None",
    "N/A",
    "O.E.M.",
    "OEM",
    "0",
};

bool isPlaceholder(const std::string& text) {
    return std::ranges::any_of(
        placeholders, [&](const char* placeholder) { return strcasecmp(text.c_str(), placeholder) == 0; });
}

}  // namespace

std::string deviceModel(const std::optional<std::string>& deviceTree,
                        const std::optional<std::string>& dmiProductName, std::string_view machine) {
    for (const std::optional<std::string>& source : {deviceTree, dmiProductName}) {
        if (!source) {
            continue;
        }
        // Strings in the device tree end with a zero byte.
        std::string name(trimmed(std::string_view(*source).substr(0, source->find('\0'))));
        if (!name.empty() && !isPlaceholder(name)) {
            return name;
        }
    }
    return std::string(machine);
}

std::string readDeviceModel(const std::string& root, std::string_view machine) {
    std::optional<std::string> deviceTree = readSystemFile(root + "/sys/firmware/devicetree/base/model");
    if (!deviceTree) {
        deviceTree = readSystemFile(root + "/proc/device-tree/model");
    }
    return deviceModel(deviceTree, readSystemFile(root + "/sys/class/dmi/id/product_name"), machine);
}

}  // namespace vorna
