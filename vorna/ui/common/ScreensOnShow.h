// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screens that the facade's close operations refer to. Kept together because closing a paywall also
/// forgets the onboarding step.

#include <vorna/ui/common/ViewController.h>

#include <memory>
#include <vector>

namespace vorna::ui {

/// Main thread. A reference may outlast the presentation of its screen.
struct ScreensOnShow {
    /// The paywall presented last; never reset.
    std::shared_ptr<ViewController> currentPaywallScreen;
    /// The loading overlay, from the end of its presentation to the end of its dismissal.
    std::shared_ptr<ViewController> currentLoadingScreen;
    /// The onboarding step presented last.
    std::shared_ptr<ViewController> currentOnboardingScreen;
    /// All onboarding steps presented and not yet closed, in the order of presentation.
    std::vector<std::shared_ptr<ViewController>> onboardingScreens;
};

}  // namespace vorna::ui
