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

/// The text of an argument that an operation requires; std::nullopt, after a log line, if there is none.
std::optional<std::string_view> required(std::string_view operation, std::string_view argument,
                                         TextArgument given) {
    const std::optional<std::string_view> text = given.text();
    if (!text) {
        log::debug({operation, ": ", argument, " is null; the call is ignored"});
    }
    return text;
}

void record(const PredefinedEvent& event) {
    quietly(event.operation, [&] { SharedInstance::get().recorder->event(event.name, ""); });
}

void record(const PredefinedEvent& event, TextArgument argument) {
    quietly(event.operation, [&] {
        const auto text = required(event.operation, event.argument, argument);
        if (!text) {
            return;
        }
        EventRecorder& recorder = *SharedInstance::get().recorder;
        if (event.use == EventArgument::nameSuffix) {
            recorder.event(std::string(event.name).append(*text), "");
        } else {
            recorder.event(event.name, *text);
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

void show(std::string_view operation, TextArgument jsonString, void (Screens::*run)(std::string)) {
    quietly(operation, [&] {
        const auto document = required(operation, "jsonString", jsonString);
        if (!document) {
            return;
        }
        if (!utf8::isValid(*document)) {
            log::debug({"❌ Failed to convert JSON string to Data"});
            return;
        }
        const NoCancellation inToolkit;
        SharedInstance::get();
        (*screens::installed().*run)(std::string(*document));
    });
}

}  // namespace

void VornaCoreSDK::UsePlatform(const Platform& platform) {
    quietly("UsePlatform", [&] {
        if (!SharedInstance::choose(platform)) {
            log::debug({"UsePlatform was called after another operation; the call is ignored"});
        }
    });
}

void VornaCoreSDK::Init(TextArgument appID) {
    quietly("Init", [&] {
        SharedInstance& instance = SharedInstance::get();
        // Later calls ignore their identifier, whatever it is.
        if (instance.isInitialised()) {
            instance.initialise({});
            return;
        }
        const auto text = required("Init", "appID", appID);
        if (text && isText("Init", "appID", *text)) {
            instance.initialise(std::string(*text));
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

void VornaCoreSDK::SetAdid(TextArgument adid) {
    quietly("SetAdid", [&] {
        const auto text = required("SetAdid", "adid", adid);
        if (text && isText("SetAdid", "adid", *text)) {
            SharedInstance::get().state->setAdid(std::string(*text));
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

std::string VornaCoreSDK::GetRemoteConfig(TextArgument key, TextArgument defaultValue) {
    return quietly("GetRemoteConfig", [&] {
        const auto text = required("GetRemoteConfig", "key", key);
        const std::string_view fallback = defaultValue.text().value_or("");
        return text ? SharedInstance::get().remoteConfigs.lookup(*text, fallback) : std::string(fallback);
    });
}

void VornaCoreSDK::Event(TextArgument name) {
    Event(name, std::nullopt);
}

void VornaCoreSDK::Event(TextArgument name, TextArgument customValue) {
    quietly("Event", [&] {
        if (const auto text = required("Event", "name", name)) {
            SharedInstance::get().recorder->event(*text, customValue.text());
        }
    });
}

void VornaCoreSDK::Event(TextArgument name, std::uint64_t startTime, std::uint64_t endtime,
                         TextArgument customValue) {
    quietly("Event", [&] {
        if (const auto text = required("Event", "name", name)) {
            SharedInstance::get().recorder->event(*text, startTime, endtime, customValue.text());
        }
    });
}

void VornaCoreSDK::OnboardingStart() {
    record(predefinedEvent("OnboardingStart"));
}

void VornaCoreSDK::OnboardingStep(TextArgument step) {
    record(predefinedEvent("OnboardingStep"), step);
}

void VornaCoreSDK::OnboardingFinish() {
    record(predefinedEvent("OnboardingFinish"));
}

void VornaCoreSDK::LoginSuccess(TextArgument source) {
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

void VornaCoreSDK::PaywallShown(TextArgument paywall) {
    record(predefinedEvent("PaywallShown"), paywall);
}

void VornaCoreSDK::PaywallClosed(TextArgument paywall) {
    record(predefinedEvent("PaywallClosed"), paywall);
}

void VornaCoreSDK::PaywallAttempted(TextArgument paywall) {
    record(predefinedEvent("PaywallAttempted"), paywall);
}

void VornaCoreSDK::PaywallPurchased(TextArgument paywall) {
    record(predefinedEvent("PaywallPurchased"), paywall);
}

void VornaCoreSDK::PaywallCancelled(TextArgument paywall) {
    record(predefinedEvent("PaywallCancelled"), paywall);
}

void VornaCoreSDK::TabClicked(TextArgument tab) {
    record(predefinedEvent("TabClicked"), tab);
}

void VornaCoreSDK::FeatureClicked(TextArgument feature) {
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

void VornaCoreSDK::ShowPaywall(TextArgument jsonString) {
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

void VornaCoreSDK::ShowOnboarding(TextArgument jsonString) {
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
