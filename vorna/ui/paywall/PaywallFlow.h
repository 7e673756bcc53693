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

    /// Decodes the document and presents its screen over the topmost one. Logs failures; shows the error
    /// screen if the document has missing fields.
    void showPaywall(std::string_view jsonString);

    /// Dismisses the paywall presented last. The flow keeps referring to it afterwards, so that calling this
    /// again does nothing; once dismissed, the reference to the current onboarding step is dropped instead.
    void closePaywall();

  private:
    ScreensOnShow& onShow_;
};

}  // namespace vorna::ui
