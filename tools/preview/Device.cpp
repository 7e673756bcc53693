// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Device.h>

#include <algorithm>
#include <array>

namespace vorna::preview {

namespace {

Device device(QSize size, int top, int bottom) {
    return {text(size), size, QMargins(0, top, 0, bottom)};
}

}  // namespace

std::span<const Device> standardDevices() {
    // Screens with a home button have a status bar of 20, those without a notch and a home indicator.
    static const std::array<Device, 6> devices{device({320, 568}, 20, 0),  device({375, 667}, 20, 0),
                                               device({414, 736}, 20, 0),  device({390, 844}, 47, 34),
                                               device({414, 896}, 44, 34), device({820, 1180}, 24, 20)};
    return devices;
}

std::optional<Device> standardDevice(std::string_view name) {
    const auto all = standardDevices();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Device& device) { return device.name == name; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

std::string text(QSize size) {
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
}

std::string text(const QMargins& safeArea) {
    return std::to_string(safeArea.top()) + "," + std::to_string(safeArea.left()) + "," +
           std::to_string(safeArea.bottom()) + "," + std::to_string(safeArea.right());
}

}  // namespace vorna::preview
