// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Gives the library a window to show its screens in. A Qt host calls it once for each of its windows, as
/// soon as the window has its content:
///
///     QQmlApplicationEngine engine("main.qml");
///     auto& window = *qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
///     vorna::ui::attach(window);
///     vorna::VornaCoreSDK::Init("my-app");

#include <vorna/base/Export.h>
#include <vorna/ui/common/Window.h>

class QQuickWindow;

namespace vorna::ui {

/// Makes that window the key window: screens are presented in it from now on. The window's items are moved
/// under one item of ours, with the window's size, so that they can be moved and hidden together; its root
/// view controller represents them.
///
/// The first call also installs the screens behind the facade and reports the application's lifecycle to the
/// library: launched, active, inactive, in the background, short of memory. The library learns the size of
/// the main screen from Qt, and the application's identifier and version if the host's options do not give
/// them.
///
/// Main thread, with a QGuiApplication. The result lives as long as the window; later calls for the same
/// window return the same.
VORNA_EXPORT Window& attach(QQuickWindow& window);

}  // namespace vorna::ui
