// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows and closes the event list.

namespace vorna::ui {

/// Main thread.
class EventListFlow {
  public:
    /// Shows the list over whatever is on show, also over another such list.
    static void showEventList();

    /// Dismisses the screen on top, whichever it is.
    static void closeEventList();
};

}  // namespace vorna::ui
