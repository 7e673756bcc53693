// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/EventCatalogue.h>
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace vorna {
namespace {

/// The events that the service must receive, independent of the library's own table.
struct Row {
    const char* operation;
    std::function<void()> call;
    const char* name;
    const char* customValue;
};

const std::vector<Row>& rows() {
    using SDK = VornaCoreSDK;
    static const std::vector<Row> table = {
        {"OnboardingStart", [] { SDK::OnboardingStart(); }, "onboarding_start", ""},
        {"OnboardingStep", [] { SDK::OnboardingStep("3"); }, "onboarding_3", ""},
        {"OnboardingFinish", [] { SDK::OnboardingFinish(); }, "onboarding_finish", ""},
        {"LoginSuccess", [] { SDK::LoginSuccess("mail"); }, "login_success", "mail"},
        {"InterstitialAdShown", [] { SDK::InterstitialAdShown(); }, "ad_int_shown", ""},
        {"InterstitialAdClosed", [] { SDK::InterstitialAdClosed(); }, "ad_int_closed", ""},
        {"RewardedAdShown", [] { SDK::RewardedAdShown(); }, "ad_rw_shown", ""},
        {"RewardedAdClosed", [] { SDK::RewardedAdClosed(); }, "ad_rw_closed", ""},
        {"RewardedAdClaimed", [] { SDK::RewardedAdClaimed(); }, "ad_rw_reward_claimed", ""},
        {"BannerAdShown", [] { SDK::BannerAdShown(); }, "ad_bnr_shown", ""},
        {"NotificationPermissionGranted", [] { SDK::NotificationPermissionGranted(); },
         "permission_notification_granted", ""},
        {"NotificationPermissionDenied", [] { SDK::NotificationPermissionDenied(); },
         "permission_notification_denied", ""},
        {"LocationPermissionGranted", [] { SDK::LocationPermissionGranted(); }, "permission_location_granted",
         ""},
        {"LocationPermissionDenied", [] { SDK::LocationPermissionDenied(); }, "permission_location_denied",
         ""},
        {"ATTPromptShown", [] { SDK::ATTPromptShown(); }, "att_shown", ""},
        {"ATTPermissionGranted", [] { SDK::ATTPermissionGranted(); }, "permission_att_granted", ""},
        {"ATTPermissionDenied", [] { SDK::ATTPermissionDenied(); }, "permission_att_denied", ""},
        {"PaywallShown", [] { SDK::PaywallShown("main"); }, "paywall_shown", "main"},
        {"PaywallClosed", [] { SDK::PaywallClosed("main"); }, "paywall_closed", "main"},
        {"PaywallAttempted", [] { SDK::PaywallAttempted("main"); }, "paywall_attempted", "main"},
        {"PaywallPurchased", [] { SDK::PaywallPurchased("main"); }, "paywall_purchased", "main"},
        {"PaywallCancelled", [] { SDK::PaywallCancelled("main"); }, "paywall_cancelled", "main"},
        {"TabClicked", [] { SDK::TabClicked("ayarlar"); }, "tab_clicked", "ayarlar"},
        {"FeatureClicked", [] { SDK::FeatureClicked("🎧"); }, "feature_clicked", "🎧"},
        {"DailyStreakShown", [] { SDK::DailyStreakShown(); }, "dailystreak_shown", ""},
        {"DailyStreakClaimed", [] { SDK::DailyStreakClaimed(); }, "dailystreak_claimed", ""},
        {"DailyStreakClosed", [] { SDK::DailyStreakClosed(); }, "dailystreak_closed", ""},
    };
    return table;
}

class PredefinedOperation : public testing::TestWithParam<Row> {};

TEST_P(PredefinedOperation, RecordsItsEvent) {
    support::RecordedEvents recorded;
    GetParam().call();
    const std::vector<EventData> events = recorded.take();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events.front().name, GetParam().name);
    EXPECT_EQ(events.front().customValue, GetParam().customValue);
}

INSTANTIATE_TEST_SUITE_P(Operations, PredefinedOperation, testing::ValuesIn(rows()),
                         [](const auto& testCase) { return testCase.param.operation; });

TEST(EventCatalogue, ContainsEachOperationOnce) {
    std::set<std::string> expected;
    for (const Row& row : rows()) {
        expected.insert(row.operation);
    }
    std::set<std::string> found;
    for (const PredefinedEvent& event : eventCatalogue) {
        found.insert(std::string(event.operation));
        EXPECT_EQ(event.argument.empty(), event.use == EventArgument::none) << event.operation;
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(found.size(), eventCatalogue.size());
}

TEST(OnboardingStep, WithAnEmptyStepRecordsTheBareName) {
    support::RecordedEvents recorded;
    VornaCoreSDK::OnboardingStep("");
    EXPECT_EQ(recorded.take().at(0).name, "onboarding_");
}

TEST(TabClicked, LogsItsNameOnOneLineForAnyText) {
    support::RecordedEvents recorded;
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::TabClicked("two\nlines");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[VornaSDK] Event called  -> tab_clicked\n");
}

}  // namespace
}  // namespace vorna
