// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows and closes the event list.

namespace vorna::ui {

/// Main thread.
class EventListFlow {
  public:
    /// Presents the list over the topmost screen, even if that is an event list too.
    static void showEventList();

    /// Dismisses the topmost screen, even if it is not an event list.
    static void closeEventList();
};

}  // namespace vorna::ui
