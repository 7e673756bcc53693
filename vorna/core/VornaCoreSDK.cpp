// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <vorna/base/CatchAll.h>
#include <vorna/config/RemoteConfigNotifications.h>
#include <vorna/core/EventCatalogue.h>
#include <vorna/core/ScreensSlot.h>
#include <vorna/core/SharedInstance.h>
#include <vorna/events/VornaQueueWorker.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NoCancellation.h>
#include <vorna/platform/Upkeep.h>
#include <vorna/text/Utf8.h>

#include <type_traits>
#include <utility>

namespace vorna {

static_assert(VornaCoreSDK::EventListUpdated == eventListUpdatedNotification);
static_assert(VornaCoreSDK::RemoteConfigsReady == remoteConfigsReadyNotification);

constinit std::atomic<bool>& VornaCoreSDK::debug = log::enabled;

namespace {

/// Runs an operation of the facade, and afterwards starts threads that are missing. Exceptions, from memory
/// exhaustion or from one of the host's ports, are logged and dropped; the result is then
/// default-constructed.
template <class Operation>
auto quietly(std::string_view name, Operation operation) -> decltype(operation()) {
    const auto run = [&operation]() -> decltype(operation()) {
        if constexpr (std::is_void_v<decltype(operation())>) {
            operation();
            upkeep::perform();
        } else {
            auto result = operation();
            upkeep::perform();
            return result;
        }
    };
    return catchAll(run, [name] {
        log::failure({name});
        return decltype(operation())();
    });
}

bool isText(std::string_view operation, std::string_view argument, std::string_view value) {
    if (utf8::isValid(value)) {
        return true;
    }
    log::debug({operation, ": ", argument, " is not UTF-8; the call is ignored"});
    return false;
}

void record(const PredefinedEvent& event, std::string_view argument = {}) {
    quietly(event.operation, [&] {
        EventRecorder& recorder = *SharedInstance::get().recorder;
        if (event.use == EventArgument::nameSuffix) {
            recorder.event(std::string(event.name).append(argument), "");
        } else {
            recorder.event(event.name, argument);
        }
    });
}

/// Runs an operation of the screens, which need the library's instance for media and the event list.
void operate(std::string_view operation, void (Screens::*run)()) {
    quietly(operation, [&] {
        const NoCancellation inToolkit;
        SharedInstance::get();
        (*screens::installed().*run)();
    });
}

void show(std::string_view operation, std::string_view jsonString, void (Screens::*run)(std::string)) {
    quietly(operation, [&] {
        if (!utf8::isValid(jsonString)) {
            log::debug({"❌ Failed to convert JSON string to Data"});
            return;
        }
        const NoCancellation inToolkit;
        SharedInstance::get();
        (*screens::installed().*run)(std::string(jsonString));
    });
}

}  // namespace

void VornaCoreSDK::UsePlatform(Platform platform) {
    quietly("UsePlatform", [&] {
        if (!SharedInstance::choose(std::move(platform))) {
            log::debug({"UsePlatform was called after another operation; the call is ignored"});
        }
    });
}

void VornaCoreSDK::Init(std::string_view appID) {
    quietly("Init", [&] {
        if (isText("Init", "appID", appID)) {
            SharedInstance::get().initialise(std::string(appID));
        }
    });
}

std::optional<std::string> VornaCoreSDK::GetAppID() {
    return quietly("GetAppID", [] { return SharedInstance::get().state->appID(); });
}

std::optional<std::string> VornaCoreSDK::GetUserID() {
    return quietly("GetUserID", [] { return SharedInstance::get().state->userID(); });
}

std::optional<std::string> VornaCoreSDK::GetAdid() {
    return quietly("GetAdid", [] { return SharedInstance::get().state->adid(); });
}

void VornaCoreSDK::SetAdid(std::string_view adid) {
    quietly("SetAdid", [&] {
        if (isText("SetAdid", "adid", adid)) {
            SharedInstance::get().state->setAdid(std::string(adid));
        }
    });
}

std::optional<std::uint64_t> VornaCoreSDK::GetInstallTime() {
    return quietly("GetInstallTime", [] { return SharedInstance::get().state->installTime(); });
}

std::uint64_t VornaCoreSDK::CurrentTimestamp() {
    return quietly("CurrentTimestamp",
                   [] { return wholeSeconds(SharedInstance::get().platform.clock->now()); });
}

std::string VornaCoreSDK::GetRemoteConfig(std::string_view key, std::string_view defaultValue) {
    return quietly("GetRemoteConfig",
                   [&] { return SharedInstance::get().remoteConfigs.lookup(key, defaultValue); });
}

void VornaCoreSDK::Event(std::string_view name) {
    Event(name, std::nullopt);
}

void VornaCoreSDK::Event(std::string_view name, std::optional<std::string_view> customValue) {
    quietly("Event", [&] { SharedInstance::get().recorder->event(name, customValue); });
}

void VornaCoreSDK::Event(std::string_view name, std::uint64_t startTime, std::uint64_t endtime,
                         std::optional<std::string_view> customValue) {
    quietly("Event", [&] { SharedInstance::get().recorder->event(name, startTime, endtime, customValue); });
}

void VornaCoreSDK::OnboardingStart() {
    record(predefinedEvent("OnboardingStart"));
}

void VornaCoreSDK::OnboardingStep(std::string_view step) {
    record(predefinedEvent("OnboardingStep"), step);
}

void VornaCoreSDK::OnboardingFinish() {
    record(predefinedEvent("OnboardingFinish"));
}

void VornaCoreSDK::LoginSuccess(std::string_view source) {
    record(predefinedEvent("LoginSuccess"), source);
}

void VornaCoreSDK::InterstitialAdShown() {
    record(predefinedEvent("InterstitialAdShown"));
}

void VornaCoreSDK::InterstitialAdClosed() {
    record(predefinedEvent("InterstitialAdClosed"));
}

void VornaCoreSDK::RewardedAdShown() {
    record(predefinedEvent("RewardedAdShown"));
}

void VornaCoreSDK::RewardedAdClosed() {
    record(predefinedEvent("RewardedAdClosed"));
}

void VornaCoreSDK::RewardedAdClaimed() {
    record(predefinedEvent("RewardedAdClaimed"));
}

void VornaCoreSDK::BannerAdShown() {
    record(predefinedEvent("BannerAdShown"));
}

void VornaCoreSDK::NotificationPermissionGranted() {
    record(predefinedEvent("NotificationPermissionGranted"));
}

void VornaCoreSDK::NotificationPermissionDenied() {
    record(predefinedEvent("NotificationPermissionDenied"));
}

void VornaCoreSDK::LocationPermissionGranted() {
    record(predefinedEvent("LocationPermissionGranted"));
}

void VornaCoreSDK::LocationPermissionDenied() {
    record(predefinedEvent("LocationPermissionDenied"));
}

void VornaCoreSDK::ATTPromptShown() {
    record(predefinedEvent("ATTPromptShown"));
}

void VornaCoreSDK::ATTPermissionGranted() {
    record(predefinedEvent("ATTPermissionGranted"));
}

void VornaCoreSDK::ATTPermissionDenied() {
    record(predefinedEvent("ATTPermissionDenied"));
}

void VornaCoreSDK::PaywallShown(std::string_view paywall) {
    record(predefinedEvent("PaywallShown"), paywall);
}

void VornaCoreSDK::PaywallClosed(std::string_view paywall) {
    record(predefinedEvent("PaywallClosed"), paywall);
}

void VornaCoreSDK::PaywallAttempted(std::string_view paywall) {
    record(predefinedEvent("PaywallAttempted"), paywall);
}

void VornaCoreSDK::PaywallPurchased(std::string_view paywall) {
    record(predefinedEvent("PaywallPurchased"), paywall);
}

void VornaCoreSDK::PaywallCancelled(std::string_view paywall) {
    record(predefinedEvent("PaywallCancelled"), paywall);
}

void VornaCoreSDK::TabClicked(std::string_view tab) {
    record(predefinedEvent("TabClicked"), tab);
}

void VornaCoreSDK::FeatureClicked(std::string_view feature) {
    record(predefinedEvent("FeatureClicked"), feature);
}

void VornaCoreSDK::DailyStreakShown() {
    record(predefinedEvent("DailyStreakShown"));
}

void VornaCoreSDK::DailyStreakClaimed() {
    record(predefinedEvent("DailyStreakClaimed"));
}

void VornaCoreSDK::DailyStreakClosed() {
    record(predefinedEvent("DailyStreakClosed"));
}

void VornaCoreSDK::ShowPaywall(std::string_view jsonString) {
    show("ShowPaywall", jsonString, &Screens::showPaywall);
}

void VornaCoreSDK::ClosePaywall() {
    operate("ClosePaywall", &Screens::closePaywall);
}

void VornaCoreSDK::ShowPaidProductLoadingScreen() {
    operate("ShowPaidProductLoadingScreen", &Screens::showPaidProductLoadingScreen);
}

void VornaCoreSDK::ClosePaidProductLoadingScreen() {
    operate("ClosePaidProductLoadingScreen", &Screens::closePaidProductLoadingScreen);
}

void VornaCoreSDK::ShowOnboarding(std::string_view jsonString) {
    show("ShowOnboarding", jsonString, &Screens::showOnboarding);
}

void VornaCoreSDK::CloseOnboarding() {
    operate("CloseOnboarding", &Screens::closeOnboarding);
}

void VornaCoreSDK::ShowEventList() {
    operate("ShowEventList", &Screens::showEventList);
}

void VornaCoreSDK::CloseEventList() {
    operate("CloseEventList", &Screens::closeEventList);
}

}  // namespace vorna
