// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's front door. An application calls `Init` once at its start and records events from then on:
///
///     vorna::VornaCoreSDK::Init("my-app");
///     vorna::VornaCoreSDK::PaywallShown("main");
///     vorna::VornaCoreSDK::Event("level_up", "7");
///
/// Every operation may be called from any thread, returns without waiting for the network, never throws and
/// reports no error: what goes wrong is told in log lines while `debug` is on, and the work is dropped. Text
/// is UTF-8 throughout. There is no shutdown; leaving `main` at any moment is fine, and events that have not
/// been sent by then are lost.
///
/// The process is stopped, with a line on standard error, only where going on would do harm: a clock outside
/// the range of time or set back while the application was inactive, a stored identity that cannot be read, a
/// user without any place for documents.

#include <vorna/base/Export.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/Platform.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

class VORNA_EXPORT VornaCoreSDK {
  public:
    VornaCoreSDK() = delete;

    /// Whether the library prints what it does to standard output. Reads and writes like a bool. Off at
    /// start; what is printed even then are the errors of the credential store and of the documents folder,
    /// and for each document of a screen that is judged the list of what it lacks, which may be empty.
    static std::atomic<bool>& debug;

    // Set-up

    /// Chooses what the library asks of the system: the service's address, stores, the HTTP client. Call it
    /// before any other operation; once one of them has run, the call is refused with a log line.
    static void UsePlatform(Platform platform);

    /// Starts the library for the application of that identifier: takes up the installation's identity,
    /// observes the application's lifecycle, starts the background sender, loads the last known remote
    /// configuration and asks for a new one, and records "sdk_initialized". Call it on the main thread.
    ///
    /// A later call loads the remembered configuration and asks for a new one again; its identifier is
    /// ignored. An identifier that is not UTF-8 is refused with a log line.
    static void Init(std::string_view appID);

    /// The identifier of the first `Init`; absent before.
    static std::optional<std::string> GetAppID();

    /// The installation's user identifier, a ULID's text; absent before `Init`.
    static std::optional<std::string> GetUserID();

    /// What `SetAdid` was given last; absent before.
    static std::optional<std::string> GetAdid();

    /// The advertising or attribution identifier that records carry from now on. Empty text is kept as such;
    /// text that is not UTF-8 is refused with a log line.
    static void SetAdid(std::string_view adid);

    /// Seconds since 1970 at which this installation's identity was made; absent before `Init`.
    static std::optional<std::uint64_t> GetInstallTime();

    /// The present time in whole seconds since 1970-01-01 00:00:00 UTC, truncated.
    static std::uint64_t CurrentTimestamp();

    // Remote configuration

    /// The configured text of the key, also when it is empty; the default while no configuration is known or
    /// it lacks the key. Never waits, reads memory only.
    static std::string GetRemoteConfig(std::string_view key, std::string_view defaultValue);

    // Events. Each is one record of its name, two dates, a custom value and the state of device, application
    // and identity at this moment. Recorded before `Init`, it is sent once `Init` has run. An event whose
    // text is not UTF-8 is dropped when its turn to be sent comes.

    /// With the present time as both dates and an empty custom value.
    static void Event(std::string_view name);

    /// With the present time as both dates; an absent custom value is recorded as the empty one.
    static void Event(std::string_view name, std::optional<std::string_view> customValue);

    /// With dates in seconds since 1970, taken as they are, also when the end lies before the start.
    static void Event(std::string_view name, std::uint64_t startTime, std::uint64_t endtime,
                      std::optional<std::string_view> customValue);

    // Predefined events; EventCatalogue.h lists the names they are recorded under.

    static void OnboardingStart();
    /// Records "onboarding_" followed by the step's text.
    static void OnboardingStep(std::string_view step);
    static void OnboardingFinish();

    /// The source, such as "mail", is the custom value.
    static void LoginSuccess(std::string_view source);

    static void InterstitialAdShown();
    static void InterstitialAdClosed();
    static void RewardedAdShown();
    static void RewardedAdClosed();
    static void RewardedAdClaimed();
    static void BannerAdShown();

    static void NotificationPermissionGranted();
    static void NotificationPermissionDenied();
    static void LocationPermissionGranted();
    static void LocationPermissionDenied();
    static void ATTPromptShown();
    static void ATTPermissionGranted();
    static void ATTPermissionDenied();

    /// The paywall's name is the custom value, here and in the four that follow.
    static void PaywallShown(std::string_view paywall);
    static void PaywallClosed(std::string_view paywall);
    static void PaywallAttempted(std::string_view paywall);
    static void PaywallPurchased(std::string_view paywall);
    static void PaywallCancelled(std::string_view paywall);

    /// The tab's name is the custom value.
    static void TabClicked(std::string_view tab);
    /// The feature's name is the custom value.
    static void FeatureClicked(std::string_view feature);

    static void DailyStreakShown();
    static void DailyStreakClaimed();
    static void DailyStreakClosed();

    // Screens. They need a window that was given to `vorna::ui::attach`; without one the operations log that
    // there is nothing to show a screen over. The calls return at once. A document is JSON text; one that is
    // not UTF-8, does not decode, or lacks what its screen needs is told in a log line or on an error screen.
    // What the user does is posted under the names below; nothing closes a screen but these operations.

    /// Shows the paywall that the document describes, over whatever is on show.
    static void ShowPaywall(std::string_view jsonString);
    /// Closes the paywall that was shown last.
    static void ClosePaywall();

    /// Dims the screen and shows a spinning arc until the purchase is over.
    static void ShowPaidProductLoadingScreen();
    /// Does nothing while the overlay is still on its way in.
    static void ClosePaidProductLoadingScreen();

    /// Shows the first of the steps that the document, an array, describes; each step's button shows the
    /// next. Call it on the main thread.
    static void ShowOnboarding(std::string_view jsonString);
    /// Closes all steps on show, newest first. Call it on the main thread.
    static void CloseOnboarding();

    /// Shows the events of this run, newest first: a help for developers.
    static void ShowEventList();
    static void CloseEventList();

    // Names of the notifications that the library posts on `NotificationCenter::defaultCenter()`. Observers
    // run on the thread that posts, which is often one of the library's own.

    /// A fetch of the remote configuration has ended: "remoteConfigFetched" (bool) says how.
    static constexpr std::string_view RemoteConfigsReady = "Vorna_RemoteConfigsReady";
    /// A product was tapped: "identifier" (text).
    static constexpr std::string_view PaidProductClicked = "Vorna_PaidProductClicked";
    /// The last step's button was tapped: "identifier" (text) of the product chosen there, or empty.
    static constexpr std::string_view OnboardingScreensFinished = "Vorna_OnboardingScreensFinished";
    /// The close button was tapped: "success" (true).
    static constexpr std::string_view PaywallScreenClosed = "Vorna_PaywallScreenClosed";
    /// The close button was tapped: "success" (true).
    static constexpr std::string_view OnboardingScreenClosed = "Vorna_OnboardingScreenClosed";
    /// The purchase button was tapped: "identifier" (text) of the product selected.
    static constexpr std::string_view PaywallScreenFinished = "Vorna_PaywallScreenFinished";
    /// "Restore Purchase" was tapped: "success" (true).
    static constexpr std::string_view RestorePurchaseClicked = "Vorna_RestorePurchaseClicked";
    /// An event was handed to the network and stands in the event list; carries nothing.
    static constexpr std::string_view EventListUpdated = "Vorna_EventListUpdated";
};

}  // namespace vorna
