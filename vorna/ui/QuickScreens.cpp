// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/QuickScreens.h>

#include <vorna/platform/NeverDestroyed.h>
#include <vorna/ui/SystemReports.h>
#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/Services.h>

#include <functional>
#include <utility>

namespace vorna::ui {

struct QuickScreens::Flows {
    ScreensOnShow onShow;
    OnboardingFlow onboarding{onShow};
    PaywallFlow paywall{onShow};
    LoadingOverlayFlow loadingOverlay{onShow};

    static Flows& get() {
        static NeverDestroyed<Flows> value;
        return *value;
    }
};

namespace {

/// The onboarding operations run at once where they are called as they should be.
void onMainThread(std::function<void()> work) {
    if (mainQueue::isCurrent()) {
        work();
    } else {
        mainQueue::async(std::move(work));
    }
}

}  // namespace

QuickScreens::QuickScreens() : flows_(Flows::get()) {}

void QuickScreens::start(const ScreenServices& services) {
    services::provide(services);
    systemReports::send();
}

void QuickScreens::showOnboarding(std::string jsonString) {
    onMainThread([this, json = std::move(jsonString)] { flows_.onboarding.showOnboarding(json); });
}

void QuickScreens::closeOnboarding() {
    onMainThread([this] { flows_.onboarding.closeOnboarding(); });
}

void QuickScreens::showPaywall(std::string jsonString) {
    mainQueue::async([this, json = std::move(jsonString)] { flows_.paywall.showPaywall(json); });
}

void QuickScreens::closePaywall() {
    mainQueue::async([this] { flows_.paywall.closePaywall(); });
}

void QuickScreens::showPaidProductLoadingScreen() {
    mainQueue::async([this] { flows_.loadingOverlay.show(); });
}

void QuickScreens::closePaidProductLoadingScreen() {
    mainQueue::async([this] { flows_.loadingOverlay.close(); });
}

void QuickScreens::showEventList() {
    mainQueue::async([] { EventListFlow::showEventList(); });
}

void QuickScreens::closeEventList() {
    mainQueue::async([] { EventListFlow::closeEventList(); });
}

}  // namespace vorna::ui
