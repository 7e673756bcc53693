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
#include <utility>
#include <variant>

namespace vorna::ui {

namespace {

/// False for one that went with its window, or that the host has dismissed.
bool isOnShow(const std::shared_ptr<ViewController>& screen) {
    const Window* const window = Window::of(*screen);
    if (window == nullptr) {
        return false;
    }
    const auto shown = window->presentedViewControllers();
    return std::find(shown.begin(), shown.end(), screen) != shown.end();
}

}  // namespace

void OnboardingFlow::showOnboarding(std::string_view jsonString) {
    if (!utf8::isValid(jsonString)) {
        log::debug({"❌ Failed to convert JSON string to Data"});
        return;
    }
    auto decoded = decodeOnboardingSteps(jsonString);
    if (const auto* const error = std::get_if<json::DecodingError>(&decoded)) {
        log::debug({"❌ JSON Parsing Error: ", error->description});
        return;
    }
    const std::shared_ptr<ViewController> host = topViewController();
    if (!host) {
        log::debug({"❌ Failed to find top view controller"});
        return;
    }
    auto steps = std::make_shared<Steps>();
    for (OnboardingStepsParameters& step : std::get<0>(decoded)) {
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
    if (const std::vector<std::string> missing = validate(*(*steps)[index]); !missing.empty()) {
        showJSONErrorScreen("Onboarding[" + std::to_string(index) + "]", missingFieldsMessage(missing));
        return;
    }
    const std::shared_ptr<ViewController> screen = makeScreen(host, steps, index);
    if (!screen) {
        return;
    }
    screen->modalPresentationStyle = ModalPresentationStyle::fullScreen;

    const std::shared_ptr<ViewController> before =
        onShow_.currentOnboardingScreen ? onShow_.currentOnboardingScreen : host.lock();
    if (Window* const window = before ? Window::of(*before) : nullptr) {
        window->addTransition({});
    }
    top->present(screen, false, [this, screen] {
        onShow_.currentOnboardingScreen = screen;
        onShow_.onboardingScreens.push_back(screen);
    });
}

std::shared_ptr<ViewController> OnboardingFlow::makeScreen(const std::weak_ptr<ViewController>& host,
                                                           const std::shared_ptr<const Steps>& steps,
                                                           std::size_t index) {
    const std::shared_ptr<const OnboardingStepsParameters>& step = (*steps)[index];
    const bool isLast = index + 1 == steps->size();
    const StepPosition position{static_cast<int>(index), static_cast<int>(steps->size()), isLast, isLast};
    if (step->type == "basic") {
        return std::make_shared<OnboardingBasicScreenViewController>(
            step, position,
            [this, host, steps, index] { presentOnboardingStep(host, steps, index + 1, ""); });
    }
    if (step->type == "paywall") {
        return std::make_shared<OnboardingPaywallScreenViewController>(
            step, position, [this, host, steps, index](const std::string& identifier) {
                presentOnboardingStep(host, steps, index + 1, identifier);
            });
    }
    // Validation lets no other type through.
    return nullptr;
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
        if (isOnShow(newest)) {
            newest->dismiss(false, [this] { dismissNewest(); });
            return;
        }
    }
    onShow_.currentOnboardingScreen = nullptr;
    log::debug({"✅ All onboarding screens dismissed"});
}

}  // namespace vorna::ui
