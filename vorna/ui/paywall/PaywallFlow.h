// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows and closes paywalls.

#include <vorna/ui/common/ScreensOnShow.h>

#include <string_view>

namespace vorna::ui {

/// Main thread.
class PaywallFlow {
  public:
    /// `onShow` must outlive the flow, which lives as long as the process.
    explicit PaywallFlow(ScreensOnShow& onShow) : onShow_(onShow) {}

    /// Decodes the document and presents its screen, whatever is on show already. Failures are logged; a
    /// document that lacks something is answered by the error screen.
    void showPaywall(std::string_view jsonString);

    /// Dismisses the paywall presented last. That one stays the last also when it has gone, so a later call
    /// asks for nothing; what a dismissal does let go of is the onboarding step on show.
    void closePaywall();

  private:
    ScreensOnShow& onShow_;
};

}  // namespace vorna::ui
