// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QMargins>
#include <QtCore/QSize>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vorna::preview {

/// A screen to show a document on, in logical pixels.
struct Device {
    std::string name;  ///< its size, as in "390x844"
    QSize size;
    QMargins safeArea;  ///< how far notches and system bars reach in
};

/// The sizes that are common, smallest first.
[[nodiscard]] std::span<const Device> standardDevices();

[[nodiscard]] std::optional<Device> standardDevice(std::string_view name);

/// "390x844" and "47,0,34,0" (top, left, bottom, right).
[[nodiscard]] std::string text(QSize size);
[[nodiscard]] std::string text(const QMargins& safeArea);

}  // namespace vorna::preview
