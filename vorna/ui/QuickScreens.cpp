// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/QuickScreens.h>

#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/ScreensRuntime.h>
#include <vorna/ui/common/Services.h>

#include <functional>
#include <memory>
#include <utility>

namespace vorna::ui {

namespace {

/// Onboarding operations run synchronously if called on the main thread, as they should be.
void onMainThread(std::function<void()> work) {
    if (mainQueue::isCurrent()) {
        work();
    } else {
        mainQueue::async(std::move(work));
    }
}

}  // namespace

QuickScreens& QuickScreens::installed() {
    auto& screens = ScreensRuntime::part<QuickScreens>();
    // Without an owner: a part is never destroyed. Only the first call counts.
    installScreens(std::shared_ptr<Screens>(std::shared_ptr<void>(), &screens));
    return screens;
}

void QuickScreens::follow(HostWindow& window) {
    applicationSignals_.deliver();
    systemReports_.follow(window);
}

void QuickScreens::start(const ScreenServices& services) {
    services::provide(services);
    systemReports_.send();
}

void QuickScreens::showOnboarding(std::string jsonString) {
    onMainThread([this, json = std::move(jsonString)] { onboarding_.showOnboarding(json); });
}

void QuickScreens::closeOnboarding() {
    onMainThread([this] { onboarding_.closeOnboarding(); });
}

void QuickScreens::showPaywall(std::string jsonString) {
    mainQueue::async([this, json = std::move(jsonString)] { paywall_.showPaywall(json); });
}

void QuickScreens::closePaywall() {
    mainQueue::async([this] { paywall_.closePaywall(); });
}

void QuickScreens::showPaidProductLoadingScreen() {
    mainQueue::async([this] { loadingOverlay_.show(); });
}

void QuickScreens::closePaidProductLoadingScreen() {
    mainQueue::async([this] { loadingOverlay_.close(); });
}

void QuickScreens::showEventList() {
    mainQueue::async([] { EventListFlow::showEventList(); });
}

void QuickScreens::closeEventList() {
    mainQueue::async([] { EventListFlow::closeEventList(); });
}

}  // namespace vorna::ui
