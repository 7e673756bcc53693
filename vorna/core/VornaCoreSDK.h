// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's facade. An application calls `Init` once at start-up and records events from then on:
///
///     vorna::VornaCoreSDK::Init("my-app");
///     vorna::VornaCoreSDK::PaywallShown("main");
///     vorna::VornaCoreSDK::Event("level_up", "7");
///
/// Every operation may be called from any thread unless it says otherwise, returns without waiting for the
/// network, never throws and reports no errors: a failure drops the work and, while `debug` is on, is logged.
/// All text is UTF-8; a null pointer in place of text that an operation requires is logged, and the call is
/// ignored. There is no shutdown; returning from `main` at any moment is fine, and events that have
/// not been sent by then are lost.
///
/// The process is aborted, with a line on standard error, only where continuing would do harm: if the clock
/// is outside the representable range or was set back while the application was inactive, if the stored
/// identity cannot be decoded, or if the user has no folder for documents.

#include <vorna/base/Export.h>
#include <vorna/core/TextArgument.h>
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

    /// Whether the library logs to standard output. Reads and writes like a bool; initially off. Two things
    /// are printed regardless: errors of the credential store and the documents folder, and the list of
    /// missing fields, possibly empty, of each screen document that is validated.
    static std::atomic<bool>& debug;

    // Set-up

    /// Sets how the library uses the system: the service's address, the stores, the HTTP client. Call it
    /// before any other operation; after one the call is logged and ignored. If memory runs out here or while
    /// the platform is made, the operations that follow are refused with a log line each, until a later call
    /// succeeds.
    static void UsePlatform(const Platform& platform);

    /// Starts the library for the application with this identifier: loads or creates the installation's
    /// identity, observes the application's lifecycle, starts sending in the background, loads the cached
    /// remote configuration and requests a new one, and records "sdk_initialized". Call it on the main
    /// thread.
    ///
    /// Later calls only load the cached configuration and request a new one; their identifier is ignored. A
    /// first identifier that is not UTF-8 is logged, and nothing is done.
    static void Init(TextArgument appID);

    /// Returns the identifier passed to the first `Init`; std::nullopt before.
    static std::optional<std::string> GetAppID();

    /// Returns the installation's user identifier, a ULID as text; std::nullopt before `Init`.
    static std::optional<std::string> GetUserID();

    /// Returns the value last passed to `SetAdid`; std::nullopt before.
    static std::optional<std::string> GetAdid();

    /// Sets the advertising or attribution identifier of the records that follow. It may be empty; one that
    /// is not UTF-8 is logged and ignored.
    static void SetAdid(TextArgument adid);

    /// Returns when this installation's identity was created, in seconds since 1970; std::nullopt before
    /// `Init`.
    static std::optional<std::uint64_t> GetInstallTime();

    /// Returns the current time in whole seconds since 1970-01-01 00:00:00 UTC, truncated.
    static std::uint64_t CurrentTimestamp();

    // Remote configuration

    /// Returns the configured value of the key, even if it is empty; the default value if no configuration is
    /// known or the key is not in it. A null default is the empty text. Reads memory only, never waits.
    static std::string GetRemoteConfig(TextArgument key, TextArgument defaultValue);

    // Events. Each record has a name, two dates, a custom value, and the state of device, application and
    // identity at the time of the call. Events recorded before `Init` are sent after it. An event with text
    // that is not UTF-8 is dropped when it is due to be sent.

    /// Records an event with the current time as both dates and an empty custom value.
    static void Event(TextArgument name);

    /// Records an event with the current time as both dates. Without a custom value (nullptr, std::nullopt)
    /// an empty one is recorded, here and in the next.
    static void Event(TextArgument name, TextArgument customValue);

    /// Records an event with dates in seconds since 1970. They are not checked: the end may precede the
    /// start.
    static void Event(TextArgument name, std::uint64_t startTime, std::uint64_t endtime,
                      TextArgument customValue);

    // Predefined events; see EventCatalogue.h for the names under which they are recorded.

    static void OnboardingStart();
    /// Records "onboarding_" followed by the step.
    static void OnboardingStep(TextArgument step);
    static void OnboardingFinish();

    /// Records the source, such as "mail", as the custom value.
    static void LoginSuccess(TextArgument source);

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

    /// Records the paywall's name as the custom value, as do the next four.
    static void PaywallShown(TextArgument paywall);
    static void PaywallClosed(TextArgument paywall);
    static void PaywallAttempted(TextArgument paywall);
    static void PaywallPurchased(TextArgument paywall);
    static void PaywallCancelled(TextArgument paywall);

    /// Records the tab's name as the custom value.
    static void TabClicked(TextArgument tab);
    /// Records the feature's name as the custom value.
    static void FeatureClicked(TextArgument feature);

    static void DailyStreakShown();
    static void DailyStreakClaimed();
    static void DailyStreakClosed();

    // Screens. They need a window attached with `vorna::ui::attach`; without one the operations only log that
    // there is none. The calls return immediately. Documents are JSON text; one that is not UTF-8, cannot be
    // decoded or lacks required fields leads to a log line or an error screen. The user's actions are posted
    // as the notifications below; only these operations close a screen.

    /// Shows the paywall described by the document over the current content.
    static void ShowPaywall(TextArgument jsonString);
    /// Closes the most recently shown paywall.
    static void ClosePaywall();

    /// Dims the screen and shows a spinner while a purchase is in progress.
    static void ShowPaidProductLoadingScreen();
    /// Does nothing while the overlay is still being presented.
    static void ClosePaidProductLoadingScreen();

    /// Shows the first of the steps described by the document, an array; each step's button shows the next.
    /// Call it on the main thread.
    static void ShowOnboarding(TextArgument jsonString);
    /// Closes all visible steps, newest first. Call it on the main thread.
    static void CloseOnboarding();

    /// Shows the events of this run, newest first; a developer's tool.
    static void ShowEventList();
    static void CloseEventList();

    // Names of the notifications that the library posts on `NotificationCenter::defaultCenter()`. Observers
    // run on the posting thread, often one of the library's own.

    /// A fetch of the remote configuration has finished; "remoteConfigFetched" (bool) says whether it
    /// succeeded.
    static constexpr std::string_view RemoteConfigsReady = "Vorna_RemoteConfigsReady";
    /// A product was tapped; "identifier" (text).
    static constexpr std::string_view PaidProductClicked = "Vorna_PaidProductClicked";
    /// The last step's button was tapped; "identifier" (text) of the product selected there, or empty.
    static constexpr std::string_view OnboardingScreensFinished = "Vorna_OnboardingScreensFinished";
    /// The close button was tapped; "success" (true).
    static constexpr std::string_view PaywallScreenClosed = "Vorna_PaywallScreenClosed";
    /// The close button was tapped; "success" (true).
    static constexpr std::string_view OnboardingScreenClosed = "Vorna_OnboardingScreenClosed";
    /// The purchase button was tapped; "identifier" (text) of the selected product.
    static constexpr std::string_view PaywallScreenFinished = "Vorna_PaywallScreenFinished";
    /// "Restore Purchase" was tapped; "success" (true).
    static constexpr std::string_view RestorePurchaseClicked = "Vorna_RestorePurchaseClicked";
    /// An event was handed to the HTTP client and added to the event list; no values.
    static constexpr std::string_view EventListUpdated = "Vorna_EventListUpdated";
};

}  // namespace vorna
