// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Divides a host's window in two: one item that holds everything the host shows, so that it can be moved,
/// hidden and disabled as one, and above it the stage for our screens.

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

class QQuickWindow;

namespace vorna::ui {

/// Main thread. The items belong to the window and are destroyed with it; every pointer here is null by then.
class HostLayer {
  public:
    /// Moves the window's items under one, and does so from now on for every item that the host adds.
    explicit HostLayer(QQuickWindow& window);

    /// Holds what the host shows.
    QPointer<QQuickItem> item() const { return item_; }

    /// Creates an item of the window's size on the stage, above the earlier ones. Null if the stage no longer
    /// exists.
    QQuickItem* addScreenLayer();

  private:
    QPointer<QQuickItem> item_;
    QPointer<QQuickItem> stage_;
};

}  // namespace vorna::ui
