#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/ScreenHost.h>

#include <gmock/gmock.h>

#include <string>

namespace vorna {
namespace {

using support::eventually;
using support::ScreenHost;
using testing::ElementsAre;

std::string step(const std::string& title, const std::string& more = "") {
    return R"({"type":"basic","media":"https://media.test/a.png","title":")" + title +
           R"(","heading":"Heading of )" + title +
           R"(","buttonTitle":"Next","backgroundColor":"#1b1b3a","actionButtonColor1":"#ff5e62",)"
           R"("actionButtonColor2":"#ff9966","titleColor":"#ffffff","headingColor":"#ffffff",)"
           R"("buttonTitleColor":"#ffffff")" +
           more + "}";
}

TEST(ShowOnboarding, ShowsTheFirstStepAndItsButtonTheNext) {
    const support::RecordedEvents platform;
    ScreenHost host;
    VornaCoreSDK::debug = true;
    VornaCoreSDK::ShowOnboarding("[" + step("One") + "," + step("Two") + "]");
    host.settle();
    ASSERT_EQ(host.screens().size(), 1U);
    host.picture().save("/tmp/step1.png");
    host.click(host.find("actionButton"));
    support::letTimePass(std::chrono::milliseconds(150));
    host.picture().save("/tmp/push.png");
    host.settle();
    ASSERT_EQ(host.screens().size(), 2U);
    host.picture().save("/tmp/step2.png");
    EXPECT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    host.settle();
    host.picture().save("/tmp/step2x.png");
    host.touch(host.find("actionButton"));
    EXPECT_THAT(host.notificationNames(), ElementsAre(VornaCoreSDK::OnboardingScreensFinished));
    VornaCoreSDK::CloseOnboarding();
    EXPECT_EQ(host.screens().size(), 0U);
    host.settle();
    host.picture().save("/tmp/host.png");
}

}  // namespace
}  // namespace vorna
