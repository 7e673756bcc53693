// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Tells the library's system port what Qt knows: the main screen, and how the application calls itself.

namespace vorna::ui {

class Window;

namespace systemReports {

/// Reports now and whenever the window that stands for the main screen changes. Main thread.
void follow(Window& window);

/// Reports what was learned last, once there is somebody to report to. Any thread.
void send();

}  // namespace systemReports

}  // namespace vorna::ui
