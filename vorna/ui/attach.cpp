// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/attach.h>

#include <vorna/core/Screens.h>
#include <vorna/ui/ApplicationSignals.h>
#include <vorna/ui/QuickScreens.h>
#include <vorna/ui/SystemReports.h>

#include <memory>

namespace vorna::ui {

Window& attach(QQuickWindow& quickWindow) {
    Window& window = Window::forQuickWindow(quickWindow);
    window.makeKey();
    static const bool installed = [] {
        installScreens(std::make_shared<QuickScreens>());
        return true;
    }();
    static_cast<void>(installed);
    applicationSignals::deliver();
    systemReports::follow(window);
    return window;
}

}  // namespace vorna::ui
