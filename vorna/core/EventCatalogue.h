// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The predefined events: one row for each operation of the facade that records one. The facade, the bindings
/// and the tests all use this table.

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace vorna {

/// How an operation's argument is recorded.
enum class EventArgument : std::uint8_t {
    /// The operation takes none; the custom value is empty.
    none,
    /// As the custom value.
    customValue,
    /// Appended to the event's name; the custom value is empty.
    nameSuffix
};

struct PredefinedEvent {
    /// The operation of `VornaCoreSDK`.
    std::string_view operation;
    /// The name of its argument; empty if it takes none.
    std::string_view argument;
    /// The event's name in the service. Some are irregular; the service expects exactly these.
    std::string_view name;
    EventArgument use = EventArgument::none;
};

inline constexpr std::array<PredefinedEvent, 27> eventCatalogue = {{
    {"OnboardingStart", "", "onboarding_start", EventArgument::none},
    {"OnboardingStep", "step", "onboarding_", EventArgument::nameSuffix},
    {"OnboardingFinish", "", "onboarding_finish", EventArgument::none},
    {"LoginSuccess", "source", "login_success", EventArgument::customValue},
    {"InterstitialAdShown", "", "ad_int_shown", EventArgument::none},
    {"InterstitialAdClosed", "", "ad_int_closed", EventArgument::none},
    {"RewardedAdShown", "", "ad_rw_shown", EventArgument::none},
    {"RewardedAdClosed", "", "ad_rw_closed", EventArgument::none},
    {"RewardedAdClaimed", "", "ad_rw_reward_claimed", EventArgument::none},
    {"BannerAdShown", "", "ad_bnr_shown", EventArgument::none},
    {"NotificationPermissionGranted", "", "permission_notification_granted", EventArgument::none},
    {"NotificationPermissionDenied", "", "permission_notification_denied", EventArgument::none},
    {"LocationPermissionGranted", "", "permission_location_granted", EventArgument::none},
    {"LocationPermissionDenied", "", "permission_location_denied", EventArgument::none},
    {"ATTPromptShown", "", "att_shown", EventArgument::none},
    {"ATTPermissionGranted", "", "permission_att_granted", EventArgument::none},
    {"ATTPermissionDenied", "", "permission_att_denied", EventArgument::none},
    {"PaywallShown", "paywall", "paywall_shown", EventArgument::customValue},
    {"PaywallClosed", "paywall", "paywall_closed", EventArgument::customValue},
    {"PaywallAttempted", "paywall", "paywall_attempted", EventArgument::customValue},
    {"PaywallPurchased", "paywall", "paywall_purchased", EventArgument::customValue},
    {"PaywallCancelled", "paywall", "paywall_cancelled", EventArgument::customValue},
    {"TabClicked", "tab", "tab_clicked", EventArgument::customValue},
    {"FeatureClicked", "feature", "feature_clicked", EventArgument::customValue},
    {"DailyStreakShown", "", "dailystreak_shown", EventArgument::none},
    {"DailyStreakClaimed", "", "dailystreak_claimed", EventArgument::none},
    {"DailyStreakClosed", "", "dailystreak_closed", EventArgument::none},
}};

/// Looks up the row of an operation at compile time; an operation without one does not compile.
consteval const PredefinedEvent& predefinedEvent(std::string_view operation) {
    for (const PredefinedEvent& event : eventCatalogue) {
        if (event.operation == operation) {
            return event;
        }
    }
    throw std::invalid_argument("no such operation in the catalogue");
}

}  // namespace vorna
