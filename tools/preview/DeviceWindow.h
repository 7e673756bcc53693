// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/preview/Device.h>
#include <vorna/ui/common/Window.h>

#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>

#include <memory>

namespace vorna::preview {

class Board;

/// The window of a device's size, with the page of a host that the library's screens come over.
class DeviceWindow {
  public:
    DeviceWindow(QQmlEngine& engine, Board& board);

    [[nodiscard]] QQuickWindow& quickWindow() { return *quickWindow_; }

    [[nodiscard]] ui::Window& window() { return *window_; }

    /// The screens take the window for the whole screen.
    void become(const Device& device, bool hasSafeArea = true);

  private:
    std::unique_ptr<QQuickWindow> quickWindow_;
    ui::Window* window_ = nullptr;  ///< lives as long as the other
};

}  // namespace vorna::preview
