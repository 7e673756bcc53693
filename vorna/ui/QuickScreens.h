// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screens behind the facade: takes each operation to the main thread and hands it to its flow.

#include <vorna/core/Screens.h>
#include <vorna/ui/common/ScreensOnShow.h>
#include <vorna/ui/eventlist/EventListFlow.h>
#include <vorna/ui/onboarding/OnboardingFlow.h>
#include <vorna/ui/paywall/LoadingOverlayFlow.h>
#include <vorna/ui/paywall/PaywallFlow.h>

#include <memory>
#include <string>

namespace vorna::ui {

/// Made once, lives as long as the process. Any thread.
class QuickScreens final : public Screens {
  public:
    QuickScreens();

    void start(const ScreenServices& services) override;
    void showPaywall(std::string jsonString) override;
    void closePaywall() override;
    void showPaidProductLoadingScreen() override;
    void closePaidProductLoadingScreen() override;
    void showOnboarding(std::string jsonString) override;
    void closeOnboarding() override;
    void showEventList() override;
    void closeEventList() override;

  private:
    struct Flows;
    /// Used on the main thread only, and never destroyed: its references may outlive the application object.
    Flows& flows_;
};

}  // namespace vorna::ui
