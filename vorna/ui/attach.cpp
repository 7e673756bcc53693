// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/attach.h>

#include <vorna/ui/QuickScreens.h>

namespace vorna::ui {

Window& attach(QQuickWindow& quickWindow) {
    Window& window = Window::forQuickWindow(quickWindow);
    window.makeKey();
    QuickScreens::installed().follow(window);
    return window;
}

}  // namespace vorna::ui
