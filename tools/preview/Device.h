// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QMargins>
#include <QtCore/QSize>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorna::preview {

/// A device to show a document on, in logical pixels.
struct Device {
    std::string name;  ///< its size, as in "390x844"
    QSize size;
    QMargins safeArea;  ///< insets for notches and system bars
};

/// Common sizes, smallest first.
[[nodiscard]] std::span<const Device> standardDevices();

/// Finds a standard device by name.
[[nodiscard]] std::optional<Device> standardDevice(std::string_view name);

/// "390x844" and "47,0,34,0" (top, left, bottom, right).
[[nodiscard]] std::string text(QSize size);
[[nodiscard]] std::string text(const QMargins& safeArea);

}  // namespace vorna::preview
