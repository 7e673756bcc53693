// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen as reported by the kernel, for programs that do not use Qt.

#include <vorna/platform/System.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// One connector of a graphics card: the name of its folder in /sys and the contents of two files in it.
struct DisplayConnector {
    /// As in "card0-eDP-1".
    std::string name;
    /// "connected", "disconnected" or "unknown".
    std::string status;
    /// One mode per line, as in "1920x1080", the preferred one first.
    std::string modes;
};

/// Returns the preferred mode of the first connected display, built-in panels first. The scale is 1, since
/// the kernel has no other. std::nullopt if no display is connected.
std::optional<ScreenFacts> mainDisplay(const std::vector<DisplayConnector>& connectors);

/// Returns the connectors of the system under the root folder, sorted by name.
std::vector<DisplayConnector> readDisplayConnectors(const std::string& root);

}  // namespace vorna
