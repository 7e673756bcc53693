// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screens behind the facade: passes each operation to its flow, on the main thread.

#include <vorna/core/Screens.h>
#include <vorna/ui/ApplicationSignals.h>
#include <vorna/ui/SystemReports.h>
#include <vorna/ui/common/ScreensOnShow.h>
#include <vorna/ui/eventlist/EventListFlow.h>
#include <vorna/ui/onboarding/OnboardingFlow.h>
#include <vorna/ui/paywall/LoadingOverlayFlow.h>
#include <vorna/ui/paywall/PaywallFlow.h>

#include <string>

namespace vorna::ui {

class HostWindow;

/// A part of ScreensRuntime. Any thread, unless a function says otherwise.
class QuickScreens final : public Screens {
  public:
    /// The process's instance, installed behind the facade. Must first be called on the main thread.
    static QuickScreens& installed();

    /// Reports the window's screen and the application's lifecycle to the library from now on. Main thread.
    void follow(HostWindow& window);

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
    ApplicationSignals applicationSignals_;
    SystemReports systemReports_;

    // Used on the main thread only. The references may outlive the application object.
    ScreensOnShow onShow_;
    OnboardingFlow onboarding_{onShow_};
    PaywallFlow paywall_{onShow_};
    LoadingOverlayFlow loadingOverlay_{onShow_};
};

}  // namespace vorna::ui
