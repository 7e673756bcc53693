// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/preview/Device.h>
#include <vorna/ui/common/Window.h>

#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>

#include <memory>

namespace vorna::preview {

class Board;

/// A window of a device's size with the page of a host; the library's screens appear over it.
class DeviceWindow {
  public:
    DeviceWindow(QQmlEngine& engine, Board& board);

    [[nodiscard]] QQuickWindow& quickWindow() { return *quickWindow_; }

    [[nodiscard]] ui::Window& window() { return *window_; }

    /// Resizes the window to the device's screen and sets its safe area.
    void resizeTo(const Device& device, bool hasSafeArea = true);

  private:
    std::unique_ptr<QQuickWindow> quickWindow_;
    ui::Window* window_ = nullptr;  ///< lives as long as `quickWindow_`
};

}  // namespace vorna::preview
