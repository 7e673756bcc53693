// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/Display.h>

#include <vorna/platform/linux/SystemFile.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace vorna {

namespace {

std::optional<ScreenFacts> screenOfMode(std::string_view mode) {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    const char* const end = mode.data() + mode.size();
    const auto widthResult = std::from_chars(mode.data(), end, width);
    if (widthResult.ec != std::errc{} || widthResult.ptr == end || *widthResult.ptr != 'x') {
        return std::nullopt;
    }
    const auto heightResult = std::from_chars(widthResult.ptr + 1, end, height);
    if (heightResult.ec != std::errc{} || width == 0 || height == 0) {
        return std::nullopt;
    }
    return ScreenFacts{
        .width = static_cast<double>(width), .height = static_cast<double>(height), .scale = 1};
}

bool isBuiltIn(const DisplayConnector& connector) {
    const auto contains = [&](std::string_view kind) {
        return connector.name.find(kind) != std::string::npos;
    };
    return contains("-DSI-") || contains("-eDP-") || contains("-LVDS-") || contains("-DPI-");
}

}  // namespace

std::optional<ScreenFacts> mainDisplay(const std::vector<DisplayConnector>& connectors) {
    for (const bool wantsBuiltIn : {true, false}) {
        for (const DisplayConnector& connector : connectors) {
            if (isBuiltIn(connector) != wantsBuiltIn || trimmed(connector.status) != "connected") {
                continue;
            }
            const std::string_view modes = connector.modes;
            if (const auto screen = screenOfMode(modes.substr(0, modes.find('\n')))) {
                return screen;
            }
        }
    }
    return std::nullopt;
}

std::vector<DisplayConnector> readDisplayConnectors(const std::string& root) {
    const std::string folder = root + "/sys/class/drm/";
    std::vector<DisplayConnector> connectors;
    for (std::string& name : namesInFolder(folder)) {
        // The folder also contains the cards ("card0") and their render nodes.
        if (!name.starts_with("card") || name.find('-') == std::string::npos) {
            continue;
        }
        const std::string connector = folder + name;
        std::optional<std::string> status = readSystemFile(connector + "/status");
        std::optional<std::string> modes = readSystemFile(connector + "/modes");
        if (status && modes) {
            connectors.push_back({std::move(name), std::move(*status), std::move(*modes)});
        }
    }
    return connectors;
}

}  // namespace vorna
