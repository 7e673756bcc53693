// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Reports facts known to Qt to the library's system port: the main screen, and the application's identifier
/// and version.

#include <vorna/platform/Mutex.h>
#include <vorna/platform/System.h>
#include <vorna/ui/common/HostWindow.h>

#include <QtCore/QObject>

#include <mutex>
#include <optional>

namespace vorna::ui {

class SystemReports final : public QObject {
  public:
    /// Reports now and whenever the key window, which represents the main screen, changes. Main thread.
    void follow(HostWindow& window);

    /// Reports the latest facts, if the library has been initialised. Any thread.
    void send();

  private:
    void update();

    Mutex mutex_;
    std::optional<ScreenFacts> screen_;
    BundleFacts bundle_;
};

}  // namespace vorna::ui
