// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows and removes the overlay that covers the screen while a purchase is in progress.

#include <vorna/ui/common/ScreensOnShow.h>

namespace vorna::ui {

/// Main thread.
class LoadingOverlayFlow {
  public:
    /// `onShow` must outlive the flow, which lives as long as the process.
    explicit LoadingOverlayFlow(ScreensOnShow& onShow) : onShow_(onShow) {}

    /// Does nothing if an overlay is shown already or there is no screen to present it over. An overlay
    /// counts as shown from the end of its animation, so two calls in quick succession may show two.
    void show();

    /// Does nothing if no overlay is shown.
    void close();

  private:
    ScreensOnShow& onShow_;
};

}  // namespace vorna::ui
