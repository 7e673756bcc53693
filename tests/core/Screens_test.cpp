// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/Screens.h>
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace vorna {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

/// Screens that show nothing and record the calls.
class RecordingScreens : public Screens {
  public:
    std::vector<std::string> calls;
    std::vector<ScreenServices> services;

    void start(const ScreenServices& provided) override { services.push_back(provided); }

    void showPaywall(std::string jsonString) override { calls.push_back("showPaywall " + jsonString); }

    void closePaywall() override { calls.emplace_back("closePaywall"); }

    void showPaidProductLoadingScreen() override { calls.emplace_back("showPaidProductLoadingScreen"); }

    void closePaidProductLoadingScreen() override { calls.emplace_back("closePaidProductLoadingScreen"); }

    void showOnboarding(std::string jsonString) override { calls.push_back("showOnboarding " + jsonString); }

    void closeOnboarding() override { calls.emplace_back("closeOnboarding"); }

    void showEventList() override { calls.emplace_back("showEventList"); }

    void closeEventList() override { throw std::runtime_error("not today"); }
};

struct WithoutScreens {
    std::string name;
    void (*operation)();
    std::string line;
};

class ScreenOperationWithoutScreens : public testing::TestWithParam<WithoutScreens> {};

TEST_P(ScreenOperationWithoutScreens, LogsThatThereIsNoWindow) {
    const support::RecordedEvents platform;
    CaptureStdout();
    GetParam().operation();
    EXPECT_EQ(GetCapturedStdout(), "") << "debug is off";
    VornaCoreSDK::debug = true;
    CaptureStdout();
    GetParam().operation();
    EXPECT_EQ(GetCapturedStdout(), GetParam().line);
}

constexpr const char* noTop = "[VornaSDK] ❌ Failed to find top view controller\n";

INSTANTIATE_TEST_SUITE_P(
    , ScreenOperationWithoutScreens,
    testing::Values(WithoutScreens{"ShowPaywall", [] { VornaCoreSDK::ShowPaywall("{}"); }, noTop},
                    WithoutScreens{"ShowPaywallWithoutUtf8", [] { VornaCoreSDK::ShowPaywall("\xff"); },
                                   "[VornaSDK] ❌ Failed to convert JSON string to Data\n"},
                    WithoutScreens{"ClosePaywall", [] { VornaCoreSDK::ClosePaywall(); },
                                   "[VornaSDK] No paywall screen to close\n"},
                    WithoutScreens{"ShowOverlay", [] { VornaCoreSDK::ShowPaidProductLoadingScreen(); }, ""},
                    WithoutScreens{"CloseOverlay", [] { VornaCoreSDK::ClosePaidProductLoadingScreen(); }, ""},
                    WithoutScreens{"ShowOnboarding", [] { VornaCoreSDK::ShowOnboarding("[]"); }, noTop},
                    WithoutScreens{"ShowOnboardingWithoutUtf8",
                                   [] { VornaCoreSDK::ShowOnboarding("[\"\xc3\"]"); },
                                   "[VornaSDK] ❌ Failed to convert JSON string to Data\n"},
                    WithoutScreens{"CloseOnboarding", [] { VornaCoreSDK::CloseOnboarding(); },
                                   "[VornaSDK] ℹ️ No onboarding screens to close\n"},
                    WithoutScreens{"ShowEventList", [] { VornaCoreSDK::ShowEventList(); }, noTop},
                    WithoutScreens{"CloseEventList", [] { VornaCoreSDK::CloseEventList(); }, ""}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(InstalledScreens, ReceiveEveryOperationWithItsDocument) {
    const support::RecordedEvents platform;
    const auto screens = std::make_shared<RecordingScreens>();
    installScreens(screens);
    VornaCoreSDK::ShowPaywall(R"({"a":1})");
    VornaCoreSDK::ClosePaywall();
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    VornaCoreSDK::ShowOnboarding("[]");
    VornaCoreSDK::CloseOnboarding();
    VornaCoreSDK::ShowEventList();
    EXPECT_THAT(screens->calls, ElementsAre(R"(showPaywall {"a":1})", "closePaywall",
                                            "showPaidProductLoadingScreen", "closePaidProductLoadingScreen",
                                            "showOnboarding []", "closeOnboarding", "showEventList"));
}

TEST(InstalledScreens, NeverSeeTextThatIsNotUtf8) {
    const support::RecordedEvents platform;
    const auto screens = std::make_shared<RecordingScreens>();
    installScreens(screens);
    VornaCoreSDK::ShowPaywall("\xff");
    VornaCoreSDK::ShowOnboarding("\xff");
    EXPECT_THAT(screens->calls, IsEmpty());
}

TEST(InstalledScreens, MayThrow) {
    const support::RecordedEvents platform;
    installScreens(std::make_shared<RecordingScreens>());
    VornaCoreSDK::debug = true;
    CaptureStdout();
    VornaCoreSDK::CloseEventList();
    EXPECT_EQ(GetCapturedStdout(), "[VornaSDK] CloseEventList has failed: not today\n");
}

TEST(InstalledScreens, ReceiveTheServicesOnceWhenTheInstanceIsCreated) {
    const support::RecordedEvents platform;
    const auto before = std::make_shared<RecordingScreens>();
    installScreens(before);
    EXPECT_THAT(before->services, IsEmpty()) << "a host may still choose its platform";
    VornaCoreSDK::Event("first");
    ASSERT_EQ(before->services.size(), 1U);
    EXPECT_EQ(before->services.front().httpClient, platform.http);
    EXPECT_EQ(before->services.front().system, platform.system);
    EXPECT_NE(before->services.front().eventListManager, nullptr);
    VornaCoreSDK::Event("second");
    EXPECT_EQ(before->services.size(), 1U);
}

TEST(InstalledScreens, ReceiveTheServicesImmediatelyIfTheInstanceExists) {
    const support::RecordedEvents platform;
    VornaCoreSDK::Event("first");
    const auto screens = std::make_shared<RecordingScreens>();
    installScreens(screens);
    EXPECT_EQ(screens->services.size(), 1U);
}

/// Screens that fail to start.
class ScreensWithoutDisplay final : public RecordingScreens {
  public:
    void start(const ScreenServices& /*provided*/) override { throw std::runtime_error("no display"); }
};

TEST(InstalledScreens, ThatFailToStartLeaveTheHostsPlatformInUse) {
    const support::RecordedEvents platform;
    installScreens(std::make_shared<ScreensWithoutDisplay>());
    VornaCoreSDK::debug = true;
    CaptureStdout();
    VornaCoreSDK::Event("first");
    EXPECT_EQ(GetCapturedStdout(), "[VornaSDK] Starting the screens has failed: no display\n"
                                   "[VornaSDK] Event called  -> first\n");
    EXPECT_EQ(SharedInstance::get().platform.httpClient, platform.http);
    EXPECT_EQ(platform.take().size(), 1U);
}

TEST(InstalledScreens, ThatFailToStartLaterDoNotAffectTheHost) {
    const support::RecordedEvents platform;
    VornaCoreSDK::Event("first");
    VornaCoreSDK::debug = true;
    CaptureStdout();
    EXPECT_NO_THROW(installScreens(std::make_shared<ScreensWithoutDisplay>()));
    EXPECT_EQ(GetCapturedStdout(), "[VornaSDK] Starting the screens has failed: no display\n");
}

TEST(InstalledScreens, AreNotReplaced) {
    const support::RecordedEvents platform;
    const auto first = std::make_shared<RecordingScreens>();
    const auto second = std::make_shared<RecordingScreens>();
    installScreens(nullptr);
    installScreens(first);
    installScreens(second);
    VornaCoreSDK::ClosePaywall();
    EXPECT_THAT(first->calls, ElementsAre("closePaywall"));
    EXPECT_THAT(second->calls, IsEmpty());
    EXPECT_THAT(second->services, IsEmpty());
}

}  // namespace
}  // namespace vorna
