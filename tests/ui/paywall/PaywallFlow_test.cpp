// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/PaidDocument.h>
#include <tests/support/ui/PrintedLines.h>
#include <tests/support/ui/ScreenHost.h>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vorna {
namespace {

using std::chrono::milliseconds;
using support::eventually;
using support::letTimePass;
using support::paywallText;
using support::PrintedLines;
using support::ScreenHost;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* closed = "[VornaSDK] Paywall screen closed";
constexpr const char* nothingToClose = "[VornaSDK] No paywall screen to close";
constexpr const char* noTop = "[VornaSDK] ❌ Failed to find top view controller";
/// Printed by validation for a valid document.
constexpr const char* complete = "[]";

/// Lets the screens do what was requested: they do it in a later turn of the event loop.
void turn() {
    letTimePass(milliseconds(5));
}

std::string heading(ScreenHost& host) {
    const QQuickItem* const label = host.find("headingLabel");
    return label == nullptr ? "" : label->property("text").toString().toStdString();
}

/// Shows one and waits for the end of its animation.
void showPaywall(ScreenHost& host, const std::string& text = paywallText()) {
    const std::size_t before = host.screens().size();
    VornaCoreSDK::ShowPaywall(text);
    ASSERT_TRUE(eventually([&] { return host.screens().size() == before + 1; }));
    host.settle();
}

class Paywall : public testing::Test {
  protected:
    const support::RecordedEvents platform_;
    ScreenHost host_{QSize(390, 844)};
};

TEST_F(Paywall, IsPresentedLaterAnimatedAndFullScreen) {
    PrintedLines printed;
    VornaCoreSDK::ShowPaywall(paywallText());
    EXPECT_TRUE(host_.screens().empty()) << "the call returns immediately";
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    EXPECT_TRUE(host_.window().isMoving());
    host_.settle();
    EXPECT_EQ(ScreenHost::geometry(host_.topView()), QRectF(0, 0, 390, 844));
    EXPECT_FALSE(host_.content()->isVisible());
    EXPECT_THAT(printed.take(), ElementsAre(complete));
    EXPECT_THAT(host_.notifications(), IsEmpty());
}

TEST_F(Paywall, IsClosedOnlyByTheHost) {
    showPaywall(host_);
    host_.click(host_.find("actionButton"));
    host_.click(host_.find("exitButton"));
    host_.click(host_.find("restoreButton"));
    letTimePass(milliseconds(50));
    EXPECT_FALSE(host_.window().isMoving());
    EXPECT_EQ(host_.screens().size(), 1U);

    PrintedLines printed;
    VornaCoreSDK::ClosePaywall();
    EXPECT_EQ(host_.screens().size(), 1U) << "the call returns immediately";
    ASSERT_TRUE(eventually([&] { return host_.screens().empty(); }));
    EXPECT_TRUE(host_.window().isMoving());
    EXPECT_THAT(printed.take(), IsEmpty()) << "not before the end of the animation";
    host_.settle();
    EXPECT_THAT(printed.take(), ElementsAre(closed));
    EXPECT_TRUE(host_.content()->isVisible());
}

TEST_F(Paywall, LogsItsClosingOnceForTwoCalls) {
    showPaywall(host_);
    PrintedLines printed;
    VornaCoreSDK::ClosePaywall();
    VornaCoreSDK::ClosePaywall();
    turn();
    host_.settle();
    EXPECT_THAT(printed.take(), ElementsAre(closed));
    VornaCoreSDK::ClosePaywall();
    turn();
    host_.settle();
    EXPECT_THAT(printed.take(), IsEmpty());
}

TEST_F(Paywall, LogsThatThereIsNoneToClose) {
    PrintedLines printed;
    VornaCoreSDK::ClosePaywall();
    turn();
    EXPECT_THAT(printed.take(), ElementsAre(nothingToClose));
}

TEST_F(Paywall, PrintsNothingWithoutDebug) {
    PrintedLines printed;
    VornaCoreSDK::debug = false;
    VornaCoreSDK::ClosePaywall();
    VornaCoreSDK::ShowPaywall("{");
    turn();
    EXPECT_THAT(printed.take(), IsEmpty());
}

TEST_F(Paywall, StaysBelowASecondPaywall) {
    showPaywall(host_, paywallText({{"heading", "One"}}));
    showPaywall(host_, paywallText({{"heading", "Two"}}));
    EXPECT_EQ(host_.screens().size(), 2U);
    EXPECT_EQ(heading(host_), "Two");

    PrintedLines printed;
    VornaCoreSDK::ClosePaywall();
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    host_.settle();
    EXPECT_EQ(heading(host_), "One");
    VornaCoreSDK::ClosePaywall();
    turn();
    host_.settle();
    EXPECT_EQ(host_.screens().size(), 1U) << "only the last one presented can be closed";
    EXPECT_THAT(printed.take(), ElementsAre(closed));
    host_.click(host_.find("exitButton"));
    EXPECT_THAT(host_.notificationNames(), ElementsAre("Vorna_PaywallScreenClosed"))
        << "the first still works";
}

TEST_F(Paywall, CanBeShownTwiceInARow) {
    VornaCoreSDK::ShowPaywall(paywallText({{"heading", "One"}}));
    VornaCoreSDK::ShowPaywall(paywallText({{"heading", "Two"}}));
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 2; }));
    host_.settle();
    EXPECT_EQ(heading(host_), "Two");
    host_.click(host_.find("exitButton"));
    EXPECT_EQ(host_.notifications().size(), 1U);
}

TEST_F(Paywall, CanBeShownWhileAnotherIsPresented) {
    VornaCoreSDK::ShowPaywall(paywallText({{"heading", "One"}}));
    ASSERT_TRUE(eventually([&] { return host_.window().isMoving(); }));
    letTimePass(milliseconds(100));
    EXPECT_TRUE(host_.window().isMoving());
    VornaCoreSDK::ShowPaywall(paywallText({{"heading", "Two"}}));
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 2; }));
    host_.settle();
    EXPECT_EQ(heading(host_), "Two");
}

TEST_F(Paywall, CanBeShownWhileAnotherIsDismissed) {
    showPaywall(host_, paywallText({{"heading", "One"}}));
    PrintedLines printed;
    VornaCoreSDK::ClosePaywall();
    ASSERT_TRUE(eventually([&] { return host_.window().isMoving(); }));
    letTimePass(milliseconds(100));
    EXPECT_TRUE(host_.window().isMoving());
    VornaCoreSDK::ShowPaywall(paywallText({{"heading", "Two"}}));
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1 && heading(host_) == "Two"; }));
    host_.settle();
    EXPECT_THAT(printed.take(), ElementsAre(complete, closed));
    VornaCoreSDK::ClosePaywall();
    ASSERT_TRUE(eventually([&] { return host_.screens().empty(); }));
    host_.settle();
    EXPECT_THAT(printed.take(), ElementsAre(closed));
}

TEST_F(Paywall, CanBeClosedWhileItIsPresented) {
    VornaCoreSDK::ShowPaywall(paywallText());
    VornaCoreSDK::ClosePaywall();
    turn();
    host_.settle();
    EXPECT_THAT(host_.screens(), IsEmpty());
    EXPECT_TRUE(host_.content()->isVisible());
}

TEST_F(Paywall, IsPresentedOverAnOnboarding) {
    VornaCoreSDK::ShowOnboarding(support::documentOf({support::basicStep("One")}));
    host_.settle();
    showPaywall(host_);
    EXPECT_EQ(host_.screens().size(), 2U);
    VornaCoreSDK::ClosePaywall();
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    host_.settle();
    EXPECT_EQ(host_.find("titleLabel")->property("text"), QStringLiteral("One"));
}

TEST_F(Paywall, LeavesTheOverlayAboveItWhenClosed) {
    showPaywall(host_);
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 2; }));
    host_.settle();
    const std::shared_ptr<ui::ViewController> overlay = host_.screens().back();
    PrintedLines printed;
    VornaCoreSDK::ClosePaywall();
    turn();
    host_.settle();
    EXPECT_THAT(host_.screens(), ElementsAre(overlay));
    EXPECT_THAT(printed.take(), ElementsAre(closed));
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    turn();
    host_.settle();
    EXPECT_THAT(host_.screens(), IsEmpty());
    EXPECT_TRUE(host_.content()->isVisible());
    EXPECT_TRUE(host_.content()->isEnabled());
}

TEST_F(Paywall, ClosesTogetherWithTheOverlayAboveIt) {
    showPaywall(host_);
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 2; }));
    host_.settle();
    PrintedLines printed;
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    VornaCoreSDK::ClosePaywall();
    turn();
    host_.settle();
    EXPECT_THAT(host_.screens(), IsEmpty());
    EXPECT_THAT(printed.take(), ElementsAre(closed));
    EXPECT_TRUE(host_.content()->isVisible());
    EXPECT_TRUE(host_.content()->isEnabled());
}

TEST_F(Paywall, LeavesTheOnboardingBelowInPlaceWhenClosed) {
    const auto step = [&] { return support::documentOf({support::basicStep("Step")}); };
    VornaCoreSDK::ShowOnboarding(step());
    host_.settle();
    const std::weak_ptr<ui::ViewController> first = host_.screens().front();
    VornaCoreSDK::ShowOnboarding(step());
    host_.settle();
    const std::weak_ptr<ui::ViewController> second = host_.screens().back();
    showPaywall(host_);
    VornaCoreSDK::ClosePaywall();
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 2; }));
    host_.settle();
    // Both steps stay presented and can still be closed together.
    EXPECT_FALSE(first.expired());
    EXPECT_FALSE(second.expired());
    PrintedLines printed;
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(printed.take(), ElementsAre("[VornaSDK] ✅ All onboarding screens dismissed"));
    EXPECT_THAT(host_.screens(), IsEmpty());
}

TEST_F(Paywall, DropsTheCurrentOnboardingStepWhenClosed) {
    // A step's push is animated in the window of the current step. A current step left over from another
    // window would take the animation there, and the new step would appear without one.
    VornaCoreSDK::ShowOnboarding(support::documentOf({support::basicStep("One")}));
    host_.settle();
    {
        ScreenHost other(QSize(390, 844));
        VornaCoreSDK::ShowOnboarding(support::documentOf({support::basicStep("Two")}));
        ASSERT_EQ(other.screens().size(), 1U);
        EXPECT_FALSE(other.window().isMoving()) << "the push went to the first window";
        showPaywall(other);
        VornaCoreSDK::ClosePaywall();
        ASSERT_TRUE(eventually([&] { return other.screens().size() == 1; }));
        other.settle();
        host_.window().makeKey();
        VornaCoreSDK::ShowOnboarding(support::documentOf({support::basicStep("Three")}));
        EXPECT_TRUE(host_.window().isMoving()) << "the step in the other window is no longer the current one";
    }
}

TEST_F(Paywall, ShowsTheErrorScreenForMissingFields) {
    PrintedLines printed;
    showPaywall(host_, "{}");
    EXPECT_EQ(host_.screens().size(), 1U);
    const std::vector<std::string> lines = printed.take();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(host_.find("actionButton"), nullptr);
    QString text;
    for (const QQuickItem* const item : host_.topView()->childItems()) {
        text += item->property("text").toString();
    }
    EXPECT_EQ(text.toStdString(),
              "⚠️ Paywall JSON Hatası:\n\nEksik alanlar:\nactionButtonColor1\nactionButtonColor2\n"
              "backgroundColor\nbuttonTitle\nbuttonTitleColor\ndetails\ndetailsColor\nfootNote\n"
              "footNoteColor\nheading\nheadingColor\nmedia\npaidProducts (boş)\nprivacyPolicy\n"
              "privacyPolicyColor\nrestoreButtonColor\nselectedPaidProduct\ntermsOfUse\ntermsOfUseColor");
    VornaCoreSDK::ClosePaywall();
    turn();
    EXPECT_THAT(printed.take(), ElementsAre(nothingToClose)) << "the error screen is not a paywall";
    EXPECT_EQ(host_.screens().size(), 1U);
    EXPECT_THAT(host_.notifications(), IsEmpty());
}

TEST_F(Paywall, LogsWhyADocumentIsUnreadable) {
    PrintedLines printed;
    VornaCoreSDK::ShowPaywall("\xff\xfe");
    turn();
    EXPECT_THAT(printed.take(), ElementsAre("[VornaSDK] ❌ Failed to convert JSON string to Data"));
    for (const std::string_view text : {"", "{", "[]", R"({"heading":7})", "not json"}) {
        SCOPED_TRACE(text);
        VornaCoreSDK::ShowPaywall(text);
        turn();
        const std::vector<std::string> lines = printed.take();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_THAT(lines.front(), testing::StartsWith("[VornaSDK] ❌ JSON Parsing Error: "));
        EXPECT_GT(lines.front().size(), std::string("[VornaSDK] ❌ JSON Parsing Error: ").size());
    }
    EXPECT_THAT(host_.screens(), IsEmpty());
}

TEST_F(Paywall, CanBeShownAndClosedFromAnyThread) {
    std::thread([] { VornaCoreSDK::ShowPaywall(paywallText()); }).join();
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    host_.settle();
    std::thread([] { VornaCoreSDK::ClosePaywall(); }).join();
    ASSERT_TRUE(eventually([&] { return host_.screens().empty(); }));
    host_.settle();
}

TEST_F(Paywall, StopsWhenItsWindowIsGone) {
    showPaywall(host_, paywallText({{"exitButtonDelay", 1}}));
    const std::weak_ptr<ui::ViewController> screen = host_.screens().front();
    testing::internal::CaptureStderr();
    PrintedLines printed;
    host_.close();
    EXPECT_FALSE(screen.expired()) << "the flow still refers to it";
    VornaCoreSDK::ClosePaywall();
    VornaCoreSDK::ShowPaywall(paywallText());
    VornaCoreSDK::ShowPaywall("{}");
    letTimePass(milliseconds(1200));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "no access to destroyed objects";
    EXPECT_THAT(printed.take(), ElementsAre(noTop, noTop)) << "before the document is validated";

    ScreenHost next(QSize(390, 844));
    showPaywall(next);
    next.click(next.find("exitButton"));
    VornaCoreSDK::ClosePaywall();
    ASSERT_TRUE(eventually([&] { return next.screens().empty(); }));
    next.settle();
    EXPECT_THAT(printed.take(), ElementsAre(complete, closed));
}

TEST_F(Paywall, SurvivesTheLossOfItsWindowDuringItsAnimation) {
    VornaCoreSDK::ShowPaywall(paywallText());
    ASSERT_TRUE(eventually([&] { return host_.window().isMoving(); }));
    letTimePass(milliseconds(60));
    testing::internal::CaptureStderr();
    host_.close();
    letTimePass(milliseconds(500));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Paywall, CanBeClosedByAnObserverOfItsTaps) {
    showPaywall(host_);
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::PaywallScreenClosed, [](const Notification&) { VornaCoreSDK::ClosePaywall(); });
    const auto other = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::PaidProductClicked, [](const Notification&) {
            VornaCoreSDK::ShowPaywall(paywallText({{"heading", "Two"}}));
        });
    host_.click(support::findItems(host_.topView(), "productCell").front());
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 2; }));
    host_.settle();
    host_.click(host_.find("exitButton"));
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    host_.settle();
    EXPECT_EQ(heading(host_), "Heading");
}

TEST(PaywallWithoutAWindow, IsLoggedAndNotShown) {
    const support::RecordedEvents platform;
    PrintedLines printed;
    VornaCoreSDK::ShowPaywall(paywallText());
    VornaCoreSDK::ClosePaywall();
    turn();
    EXPECT_THAT(printed.take(), ElementsAre(noTop, nothingToClose));
    // A later window does not show it either.
    ScreenHost host;
    turn();
    EXPECT_THAT(host.screens(), IsEmpty());
}

}  // namespace
}  // namespace vorna
