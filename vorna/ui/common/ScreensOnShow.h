// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screens that the facade's close operations refer to. Kept here together because closing a paywall lets
/// go of the onboarding step as well.

#include <vorna/ui/common/ViewController.h>

#include <memory>
#include <vector>

namespace vorna::ui {

/// Main thread. A reference may outlast its screen's time on show.
struct ScreensOnShow {
    /// The paywall presented last; never let go of.
    std::shared_ptr<ViewController> currentPaywallScreen;
    /// The loading overlay, from the end of its presentation to the end of its dismissal.
    std::shared_ptr<ViewController> currentLoadingScreen;
    /// The onboarding step presented last.
    std::shared_ptr<ViewController> currentOnboardingScreen;
    /// All onboarding steps presented and not yet closed, in the order of presentation.
    std::vector<std::shared_ptr<ViewController>> onboardingScreens;
};

}  // namespace vorna::ui
