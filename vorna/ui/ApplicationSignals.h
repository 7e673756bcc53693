// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Posts the six notifications of the application's lifecycle as Qt and the system report it.

#include <QtCore/QObject>
#include <QtCore/QPointer>

namespace vorna::ui {

/// Main thread.
class ApplicationSignals {
  public:
    /// Starts on the first call and continues for as long as the application object exists. An application
    /// that is active already is reported at the next turn of the event loop, so that the host can initialise
    /// the library first.
    void deliver();

  private:
    QPointer<QObject> deliverer_;
};

}  // namespace vorna::ui
