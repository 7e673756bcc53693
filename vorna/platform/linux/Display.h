// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen as the kernel knows it, for programs that show nothing through Qt.

#include <vorna/platform/System.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// One connector of a graphics card: the name of its folder and the contents of two files in it.
struct DisplayConnector {
    /// As in "card0-eDP-1".
    std::string name;
    /// "connected", "disconnected" or "unknown".
    std::string status;
    /// One mode a line, as in "1920x1080", the preferred one first.
    std::string modes;
};

/// The preferred mode of the first connected display, at scale 1, since the kernel knows of no other. A panel
/// that is built in comes before what is plugged in. Absent when nothing is connected.
std::optional<ScreenFacts> mainDisplay(const std::vector<DisplayConnector>& connectors);

/// The connectors of the system under the root folder, sorted by name.
std::vector<DisplayConnector> readDisplayConnectors(const std::string& root);

}  // namespace vorna
