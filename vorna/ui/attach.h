// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Gives the library a window to show its screens in. A Qt host calls it once for each of its windows, when
/// the window has its content:
///
///     QQmlApplicationEngine engine("main.qml");
///     auto& window = *qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
///     vorna::ui::attach(window);
///     vorna::VornaCoreSDK::Init("my-app");

#include <vorna/base/Export.h>
#include <vorna/ui/common/Window.h>

class QQuickWindow;

namespace vorna::ui {

/// Makes that window the key window: screens are presented in it from now on. What the host shows in it
/// becomes the view of its root view controller: the window's items are put under one item of ours, as large
/// as the window, so that they can be moved and hidden with it.
///
/// The first call also installs the screens behind the facade, and delivers the application's life to the
/// library as Qt tells it: launched, active, inactive, in the background, short of memory. The library learns
/// the size of the main screen and, where the host's options are silent, identifier and version of the
/// application from Qt.
///
/// Main thread, with a QGuiApplication. The result lives as long as the window; a later call for the same
/// window returns the same.
VORNA_EXPORT Window& attach(QQuickWindow& window);

}  // namespace vorna::ui
