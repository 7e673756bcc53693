// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows and removes the overlay that covers the screen while a purchase runs.

#include <vorna/ui/common/ScreensOnShow.h>

namespace vorna::ui {

/// Main thread.
class LoadingOverlayFlow {
  public:
    /// `onShow` must outlive the flow, which lives as long as the process.
    explicit LoadingOverlayFlow(ScreensOnShow& onShow) : onShow_(onShow) {}

    /// Does nothing while an overlay is on show, or where there is nothing to show one over. An overlay
    /// counts only when it has fully arrived: two quick calls may show two.
    void show();

    /// Does nothing while there is none.
    void close();

  private:
    ScreensOnShow& onShow_;
};

}  // namespace vorna::ui
