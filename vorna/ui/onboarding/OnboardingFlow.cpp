// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/onboarding/OnboardingFlow.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/documents/OnboardingValidation.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/text/Utf8.h>
#include <vorna/ui/common/Window.h>
#include <vorna/ui/common/showJSONErrorScreen.h>
#include <vorna/ui/common/topViewController.h>
#include <vorna/ui/onboarding/OnboardingBasicScreenViewController.h>
#include <vorna/ui/onboarding/OnboardingPaywallScreenViewController.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace vorna::ui {

namespace {

/// Returns false if the screen's window is gone or the host has dismissed the screen.
bool isPresented(const std::shared_ptr<ViewController>& screen) {
    const Window* const window = Window::of(*screen);
    if (window == nullptr) {
        return false;
    }
    const auto presented = window->presentedViewControllers();
    return std::find(presented.begin(), presented.end(), screen) != presented.end();
}

}  // namespace

void OnboardingFlow::showOnboarding(std::string_view jsonString) {
    if (!utf8::isValid(jsonString)) {
        log::debug({"❌ Failed to convert JSON string to Data"});
        return;
    }
    auto decoded = decodeOnboardingSteps(jsonString);
    if (!decoded) {
        log::debug({"❌ JSON Parsing Error: ", json::describe(decoded.error(), jsonString)});
        return;
    }
    const std::shared_ptr<ViewController> host = topViewController();
    if (!host) {
        log::debug({"❌ Failed to find top view controller"});
        return;
    }
    auto steps = std::make_shared<Steps>();
    for (OnboardingStepsParameters& step : *decoded) {
        steps->push_back(std::make_shared<const OnboardingStepsParameters>(std::move(step)));
    }
    presentOnboardingStep(host, steps, 0, "");
}

void OnboardingFlow::presentOnboardingStep(const std::weak_ptr<ViewController>& host,
                                           const std::shared_ptr<const Steps>& steps, std::size_t index,
                                           const std::string& identifier) {
    if (index >= steps->size()) {
        NotificationCenter::defaultCenter().post(VornaCoreSDK::OnboardingScreensFinished,
                                                 {{std::string("identifier"), identifier}});
        return;
    }
    const std::shared_ptr<ViewController> top = topViewController();
    if (!top) {
        log::debug({"❌ Failed to find top view controller"});
        return;
    }
    const OnboardingStepsParameters& step = *(*steps)[index];
    const std::optional<StepKind> kind = stepKindOf(step.type);
    // Validation reports an unknown kind as well.
    if (const std::vector<std::string> missing = validate(step); !kind || !missing.empty()) {
        showJSONErrorScreen("Onboarding[" + std::to_string(index) + "]", missingFieldsMessage(missing));
        return;
    }
    const std::shared_ptr<ViewController> screen = makeScreen(*kind, host, steps, index);
    const std::shared_ptr<ViewController> previous =
        onShow_.currentOnboardingScreen ? onShow_.currentOnboardingScreen : host.lock();
    if (Window* const window = previous ? Window::of(*previous) : nullptr) {
        window->addTransition({});
    }
    top->present(screen, false, [this, screen] {
        onShow_.currentOnboardingScreen = screen;
        onShow_.onboardingScreens.push_back(screen);
    });
}

std::shared_ptr<ViewController> OnboardingFlow::makeScreen(StepKind kind,
                                                           const std::weak_ptr<ViewController>& host,
                                                           const std::shared_ptr<const Steps>& steps,
                                                           std::size_t index) {
    const std::shared_ptr<const OnboardingStepsParameters>& step = (*steps)[index];
    const bool isLast = index + 1 == steps->size();
    const StepPosition position{static_cast<int>(index), static_cast<int>(steps->size()), isLast, isLast};
    const auto showNext = [this, host, steps, index](const std::string& identifier) {
        presentOnboardingStep(host, steps, index + 1, identifier);
    };
    std::shared_ptr<ViewController> screen;
    switch (kind) {
    case StepKind::basic:
        screen = std::make_shared<OnboardingBasicScreenViewController>(step, position,
                                                                       [showNext] { showNext(""); });
        break;
    case StepKind::paywall:
        screen = std::make_shared<OnboardingPaywallScreenViewController>(step, position, showNext);
        break;
    }
    screen->modalPresentationStyle = ModalPresentationStyle::fullScreen;
    return screen;
}

void OnboardingFlow::closeOnboarding() {
    if (onShow_.onboardingScreens.empty()) {
        log::debug({"ℹ️ No onboarding screens to close"});
        return;
    }
    dismissNewest();
}

void OnboardingFlow::dismissNewest() {
    while (!onShow_.onboardingScreens.empty()) {
        const std::shared_ptr<ViewController> newest = std::move(onShow_.onboardingScreens.back());
        onShow_.onboardingScreens.pop_back();
        if (isPresented(newest)) {
            newest->dismiss(false, [this] { dismissNewest(); });
            return;
        }
    }
    onShow_.currentOnboardingScreen = nullptr;
    log::debug({"✅ All onboarding screens dismissed"});
}

}  // namespace vorna::ui
