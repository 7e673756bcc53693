// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/HeldKey.h>
#include <tests/support/ui/OnboardingDocument.h>
#include <tests/support/ui/PlainScreen.h>
#include <tests/support/ui/PrintedLines.h>
#include <tests/support/ui/ScreenHost.h>

#include <vorna/ui/common/NavigationController.h>
#include <vorna/ui/common/showJSONErrorScreen.h>
#include <vorna/ui/onboarding/OnboardingBasicScreenViewController.h>

#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace vorna {
namespace {

using std::chrono::milliseconds;
using support::basicStep;
using support::documentOf;
using support::eventually;
using support::letTimePass;
using support::PrintedLines;
using support::ScreenHost;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto* nothingToClose = "[VornaSDK] ℹ️ No onboarding screens to close";
constexpr auto* allDismissed = "[VornaSDK] ✅ All onboarding screens dismissed";
constexpr auto* noTop = "[VornaSDK] ❌ Failed to find top view controller";
/// Printed by validation for a valid step.
constexpr auto* nothingMissing = "[]";

std::string threeSteps() {
    return documentOf({basicStep("One"), basicStep("Two"), basicStep("Three")});
}

class Onboarding : public testing::Test {
  protected:
    /// The titles of the presented steps, lowest first; "?" for any other screen.
    std::vector<std::string> titles() const {
        std::vector<std::string> found;
        for (const auto& screen : host.screens()) {
            const auto* const step =
                qobject_cast<const ui::OnboardingBasicScreenViewController*>(screen.get());
            found.push_back(step == nullptr ? "?" : step->look().titleText.toStdString());
        }
        return found;
    }

    void tapButton() {
        host.settle();
        host.click(host.find("actionButton"));
        host.settle();
    }

    /// The text of the error screen on top; empty if another screen is on top.
    std::string errorText() const {
        const QVariant text = host.screens().empty() ? QVariant() : host.screens().back()->property("text");
        return text.toString().toStdString();
    }

    const support::RecordedEvents platform;
    ScreenHost host;
    PrintedLines printed;
};

TEST_F(Onboarding, WithoutStepsFinishesImmediately) {
    VornaCoreSDK::ShowOnboarding("[]");
    EXPECT_THAT(host.screens(), IsEmpty());
    ASSERT_EQ(host.notifications().size(), 1U);
    EXPECT_EQ(host.notifications().front().name, VornaCoreSDK::OnboardingScreensFinished);
    EXPECT_EQ(host.notifications().front().userInfo, (UserInfo{{"identifier", std::string()}}));
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(printed.take(), ElementsAre(nothingToClose));
}

TEST_F(Onboarding, ShowsItsStepsInOrderAndReportsTheEnd) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    EXPECT_THAT(titles(), ElementsAre("One")) << "immediately";
    EXPECT_TRUE(host.window().isMoving());
    tapButton();
    EXPECT_THAT(titles(), ElementsAre("One", "Two"));
    EXPECT_THAT(host.notifications(), IsEmpty());
    tapButton();
    EXPECT_THAT(titles(), ElementsAre("One", "Two", "Three"));
    EXPECT_THAT(host.notifications(), IsEmpty());
    tapButton();
    EXPECT_THAT(titles(), ElementsAre("One", "Two", "Three")) << "only the host closes them";
    ASSERT_EQ(host.notifications().size(), 1U);
    EXPECT_EQ(host.notifications().back().name, VornaCoreSDK::OnboardingScreensFinished);
    EXPECT_EQ(host.notifications().back().userInfo, (UserInfo{{"identifier", std::string()}}));
    tapButton();
    EXPECT_EQ(host.notifications().size(), 2U) << "every tap is reported";
    EXPECT_THAT(printed.take(), ElementsAre(nothingMissing, nothingMissing, nothingMissing));
}

TEST_F(Onboarding, PushesThePreviousStepOut) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    host.settle();
    QQuickItem* const first = host.topView()->parentItem();
    host.click(host.find("actionButton"));
    QQuickItem* const second = host.topView()->parentItem();
    ASSERT_NE(first, second);
    int samples = 0;
    while (host.window().isMoving()) {
        EXPECT_NEAR(first->x(), second->x() - 375, 1e-6);
        ++samples;
        letTimePass(milliseconds(5));
    }
    EXPECT_GE(samples, 5);
    EXPECT_EQ(second->x(), 0);
    EXPECT_FALSE(first->isVisible());
    EXPECT_FALSE(host.content()->isVisible());
}

TEST_F(Onboarding, GivesOnlyTheLastStepACloseButtonAndAnArrow) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    for (int i = 0; i < 3; ++i) {
        host.settle();
        letTimePass(milliseconds(100));
        EXPECT_EQ(host.find("exitButton") != nullptr, i == 2) << i;
        ASSERT_NE(host.find("arrow"), nullptr);
        EXPECT_EQ(host.find("arrow")->isVisible(), i == 2) << i;
        tapButton();
    }
}

TEST_F(Onboarding, WithOneStepHasACloseButtonAndAnArrow) {
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Only")}));
    host.settle();
    EXPECT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    EXPECT_TRUE(host.find("arrow")->isVisible());
}

TEST_F(Onboarding, ReportsTheCloseButtonAndStaysOpen) {
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Only")}));
    host.settle();
    ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
    host.settle();
    host.click(host.find("exitButton"));
    ASSERT_EQ(host.notifications().size(), 1U);
    EXPECT_EQ(host.notifications().back().name, VornaCoreSDK::OnboardingScreenClosed);
    EXPECT_EQ(host.notifications().back().userInfo, (UserInfo{{"success", true}}));
    EXPECT_THAT(titles(), ElementsAre("Only"));
}

TEST_F(Onboarding, ShowsTheErrorScreenForAnInvalidStepAndStopsThere) {
    boost::json::object second = basicStep("Two");
    second.erase("heading");
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("One"), second, basicStep("Three")}));
    tapButton();
    EXPECT_THAT(titles(), ElementsAre("One", "?"));
    EXPECT_EQ(errorText(), "⚠️ Onboarding[1] JSON Hatası:\n\nEksik alanlar:\nheading");
    EXPECT_THAT(host.notifications(), IsEmpty());
    host.click(QPointF(187, 590));
    host.press(Qt::Key_Return);
    EXPECT_THAT(titles(), ElementsAre("One", "?")) << "the button below is out of reach";
    EXPECT_THAT(printed.take(), ElementsAre(nothingMissing, "[\"heading\"]"));

    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(titles(), ElementsAre("?")) << "the error screen is not a step";
    EXPECT_THAT(printed.take(), ElementsAre(allDismissed));
}

TEST_F(Onboarding, ShowsTheErrorScreenForAnUnknownType) {
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("One", {{"type", "Basic"}})}));
    host.settle();
    EXPECT_EQ(errorText(), "⚠️ Onboarding[0] JSON Hatası:\n\nEksik alanlar:\ntype (geçersiz)");
}

TEST_F(Onboarding, ListsAllMissingFieldsOfAnEmptyStep) {
    VornaCoreSDK::ShowOnboarding("[{}]");
    EXPECT_TRUE(host.window().isMoving()) << "it is presented with an animation";
    EXPECT_GT(host.topView()->parentItem()->y(), 0) << "from below, not pushed";
    host.settle();
    EXPECT_EQ(errorText(),
              "⚠️ Onboarding[0] JSON Hatası:\n\nEksik "
              "alanlar:\nactionButtonColor1\nactionButtonColor2\nbackgroundColor\nbuttonTitle\n"
              "buttonTitleColor\nheading\nheadingColor\nmedia\ntitle\ntitleColor\ntype (geçersiz)");
    const auto error = host.screens().back();
    EXPECT_EQ(error->modalPresentationStyle, ui::ModalPresentationStyle::fullScreen);
    EXPECT_EQ(host.picture().pixelColor(2, 2), QColor(Qt::white));
    QQuickItem* const text = host.topView()->childItems().front();
    EXPECT_EQ(text->property("text").toString().toStdString(), errorText());
    EXPECT_EQ(text->property("color").value<QColor>(), QColor(Qt::black));
    EXPECT_EQ(text->x(), 24);
    EXPECT_EQ(text->width(), 375 - 2 * 24);
    EXPECT_NEAR(text->y() + text->height() / 2, 667 / 2.0, 1);
    EXPECT_EQ(text->property("horizontalAlignment").toInt(), Qt::AlignHCenter);
}

struct Unreadable {
    const char* name;
    std::string document;
    std::string line;
};

void PrintTo(const Unreadable& unreadable, std::ostream* stream) {
    *stream << unreadable.name;
}

class UnreadableOnboarding : public testing::TestWithParam<Unreadable> {};

TEST_P(UnreadableOnboarding, IsLoggedAndNotShown) {
    const support::RecordedEvents platform;
    const ScreenHost host;
    PrintedLines printed;
    VornaCoreSDK::ShowOnboarding(GetParam().document);
    const std::vector<std::string> lines = printed.take();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_THAT(lines.front(), testing::StartsWith(GetParam().line));
    EXPECT_THAT(host.screens(), IsEmpty());
    EXPECT_THAT(host.notifications(), IsEmpty());
}

constexpr auto* parsingError = "[VornaSDK] ❌ JSON Parsing Error: ";

INSTANTIATE_TEST_SUITE_P(
    Documents, UnreadableOnboarding,
    testing::Values(
        Unreadable{"NotUtf8", "[\"\xff\"]", "[VornaSDK] ❌ Failed to convert JSON string to Data"},
        Unreadable{"Empty", "", parsingError}, Unreadable{"NotJson", "[{]", parsingError},
        Unreadable{"AnObject", "{}", parsingError},
        Unreadable{"AnArrayOfTexts", R"(["basic"])", parsingError}, Unreadable{"Null", "null", parsingError},
        Unreadable{"ADelayInText", documentOf({basicStep("One", {{"exitButtonDelay", "3"}})}), parsingError},
        Unreadable{"ATitleThatIsANumber", documentOf({basicStep("One", {{"title", 1}})}), parsingError},
        Unreadable{"AWrongTypeInALaterStep",
                   documentOf({basicStep("One"), basicStep("Two", {{"details", "text"}})}), parsingError}),
    [](const auto& testCase) { return testCase.param.name; });

TEST_F(Onboarding, ClosesAllStepsNewestFirstAndLogsItOnce) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    tapButton();
    tapButton();
    std::vector<std::string> order;
    for (const auto& screen : host.screens()) {
        const auto title =
            qobject_cast<ui::OnboardingBasicScreenViewController*>(screen.get())->look().titleText;
        QObject::connect(screen->view(), &QQuickItem::visibleChanged, [&order, title, view = screen->view()] {
            if (!view->isVisible()) {
                order.push_back(title.toStdString());
            }
        });
    }
    printed.take();
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(host.screens(), IsEmpty());
    EXPECT_EQ(order.front(), "Three");
    EXPECT_THAT(printed.take(), ElementsAre(allDismissed));
    EXPECT_TRUE(host.content()->isVisible());
    EXPECT_FALSE(host.window().isMoving()) << "without animation";
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(printed.take(), ElementsAre(nothingToClose));
}

TEST_F(Onboarding, ShownTwiceIsClosedByOneCall) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Other")}));
    host.settle();
    EXPECT_THAT(titles(), ElementsAre("One", "Other"));
    tapButton();
    EXPECT_EQ(host.notificationNames().size(), 1U) << "the second sequence ends separately";
    printed.take();
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_THAT(printed.take(), ElementsAre(allDismissed));
}

TEST_F(Onboarding, CanBeShownAgainAfterClosing) {
    for (int i = 0; i < 3; ++i) {
        VornaCoreSDK::ShowOnboarding(threeSteps());
        tapButton();
        EXPECT_THAT(titles(), ElementsAre("One", "Two"));
        VornaCoreSDK::CloseOnboarding();
        EXPECT_THAT(titles(), IsEmpty());
    }
}

TEST_F(Onboarding, DoesNotSkipAStepWhenItsButtonIsTappedTwice) {
    int tries = 0;
    for (const int pause : {0, 30, 80, 150, 220, 270}) {
        VornaCoreSDK::ShowOnboarding(threeSteps());
        host.settle();
        const QPointF place = ScreenHost::geometry(host.find("actionButton")).center();
        host.click(place);
        letTimePass(milliseconds(pause));
        host.click(place);
        host.press(Qt::Key_Space);
        // On a slow machine the next step may already be in place, and the second tap may count.
        if (host.window().isMoving() && host.screens().size() == 2) {
            ++tries;
            host.settle();
            EXPECT_THAT(titles(), ElementsAre("One", "Two")) << pause;
        } else {
            EXPECT_GE(pause, 150);
        }
        VornaCoreSDK::CloseOnboarding();
    }
    EXPECT_GE(tries, 3);
    VornaCoreSDK::ShowOnboarding(threeSteps());
    host.settle();
    QTest::mouseDClick(&host.quickWindow(), Qt::LeftButton, {},
                       ScreenHost::geometry(host.find("actionButton")).center().toPoint());
    host.settle();
    EXPECT_THAT(titles(), ElementsAre("One", "Two"));
}

TEST_F(Onboarding, AdvancesByOneStepForAHeldKey) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    host.settle();
    QTest::keyPress(&host.quickWindow(), Qt::Key_Return);
    host.settle();
    support::repeatKey(host.quickWindow(), Qt::Key_Return, 20);
    QTest::keyRelease(&host.quickWindow(), Qt::Key_Return);
    host.settle();
    EXPECT_THAT(titles(), ElementsAre("One", "Two"));
}

TEST_F(Onboarding, IgnoresAKeyHeldSinceBeforeItWasShown) {
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyPress(&host.quickWindow(), key);
        VornaCoreSDK::ShowOnboarding(threeSteps());
        host.settle();
        ASSERT_TRUE(host.find("actionButton")->hasActiveFocus());
        support::repeatKey(host.quickWindow(), key, 20);
        QTest::keyRelease(&host.quickWindow(), key);
        host.settle();
        EXPECT_THAT(titles(), ElementsAre("One")) << key;
        VornaCoreSDK::CloseOnboarding();
    }
}

TEST_F(Onboarding, CanBeShownAndClosedFromAnyThread) {
    std::thread([&] { VornaCoreSDK::ShowOnboarding(threeSteps()); }).join();
    EXPECT_THAT(titles(), IsEmpty()) << "the main thread runs it later";
    EXPECT_TRUE(eventually([&] { return !titles().empty(); }));
    host.settle();
    std::thread([] { VornaCoreSDK::CloseOnboarding(); }).join();
    EXPECT_TRUE(eventually([&] { return titles().empty(); }));
}

TEST_F(Onboarding, IsNotShownAfterItsWindowIsGone) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    tapButton();
    printed.take();
    host.close();
    VornaCoreSDK::ShowOnboarding("[]]");
    EXPECT_THAT(printed.take(), ElementsAre(testing::StartsWith(parsingError)));
    VornaCoreSDK::ShowOnboarding(threeSteps());
    EXPECT_THAT(printed.take(), ElementsAre(noTop));
    VornaCoreSDK::ShowOnboarding("[]");
    EXPECT_THAT(printed.take(), ElementsAre(noTop)) << "even without steps it needs a window";
    EXPECT_THAT(host.notifications(), IsEmpty());
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(printed.take(), ElementsAre(allDismissed));
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(printed.take(), ElementsAre(nothingToClose));
    ScreenHost another;
    VornaCoreSDK::ShowOnboarding(threeSteps());
    EXPECT_EQ(another.screens().size(), 1U);
}

TEST_F(Onboarding, ClosesTheRemainingStepsAfterTheHostDismissedOne) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    tapButton();
    tapButton();
    host.screens().back()->dismiss(false);
    printed.take();
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_THAT(printed.take(), ElementsAre(allDismissed));
}

TEST_F(Onboarding, ClosesTheRemainingStepsDuringADismissal) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    tapButton();
    host.screens().back()->dismiss(true);
    printed.take();
    VornaCoreSDK::CloseOnboarding();
    host.settle();
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_THAT(printed.take(), ElementsAre(allDismissed));
}

TEST_F(Onboarding, CanBeClosedByAnObserverOfItsEnd) {
    const auto closing = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::OnboardingScreensFinished,
        [](const Notification&) { VornaCoreSDK::CloseOnboarding(); });
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("One"), basicStep("Two")}));
    tapButton();
    host.settle();
    host.touch(host.find("actionButton"));
    EXPECT_THAT(titles(), IsEmpty());
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("One")}));
    tapButton();
    EXPECT_THAT(titles(), IsEmpty());
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("One")}));
    host.settle();
    host.press(Qt::Key_Space);
    EXPECT_THAT(titles(), IsEmpty());
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("One")}));
    host.settle();
    host.press(Qt::Key_Return);
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_EQ(host.notifications().size(), 4U);
}

TEST_F(Onboarding, CanBeClosedAndShownAgainByAnObserverOfItsCloseButton) {
    int times = 0;
    const auto closing = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::OnboardingScreenClosed, [&](const Notification&) {
            VornaCoreSDK::CloseOnboarding();
            if (++times < 3) {
                VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Again")}));
            }
        });
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Only")}));
    for (int i = 0; i < 3; ++i) {
        host.settle();
        ASSERT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
        host.settle();
        host.click(host.find("exitButton"));
    }
    EXPECT_EQ(times, 3);
    EXPECT_THAT(titles(), IsEmpty());
}

TEST_F(Onboarding, CanBeClosedDuringAPush) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_FALSE(host.window().isMoving());
    VornaCoreSDK::ShowOnboarding(threeSteps());
    host.settle();
    host.click(host.find("actionButton"));
    letTimePass(milliseconds(100));
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_EQ(host.content()->parentItem()->position(), QPointF(0, 0));
    EXPECT_TRUE(host.content()->isVisible());
    EXPECT_TRUE(host.content()->isEnabled());
}

TEST_F(Onboarding, IgnoresItsButtonOnceClosed) {
    VornaCoreSDK::ShowOnboarding(threeSteps());
    host.settle();
    const QPointF place = ScreenHost::geometry(host.find("actionButton")).center();
    VornaCoreSDK::CloseOnboarding();
    host.click(place);
    host.press(Qt::Key_Return);
    letTimePass(milliseconds(20));
    host.click(place);
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_THAT(host.notifications(), IsEmpty());
}

TEST_F(Onboarding, IsPresentedOverTheTopmostScreen) {
    const auto below = support::PlainScreen::make();
    host.window().rootViewController()->present(below, false);
    VornaCoreSDK::ShowOnboarding(threeSteps());
    host.settle();
    EXPECT_THAT(titles(), ElementsAre("?", "One"));
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(host.screens(), ElementsAre(below));
}

TEST_F(Onboarding, ShowsTheNextOfAHundredThousandStepsQuickly) {
    boost::json::array steps;
    for (int i = 0; i < 100'000; ++i) {
        steps.push_back(basicStep(std::to_string(i)));
    }
    const std::string document = boost::json::serialize(steps);
    VornaCoreSDK::ShowOnboarding(document);
    EXPECT_THAT(titles(), ElementsAre("0"));
    const auto before = std::chrono::steady_clock::now();
    tapButton();
    const auto time = std::chrono::steady_clock::now() - before;
    EXPECT_THAT(titles(), ElementsAre("0", "1"));
    EXPECT_LT(time, std::chrono::seconds(3)) << "independent of the number of steps";
    VornaCoreSDK::CloseOnboarding();
}

struct Delay {
    const char* name;
    std::int64_t seconds;
    bool isImmediate;
};

void PrintTo(const Delay& delay, std::ostream* stream) {
    *stream << delay.name;
}

class CloseButtonDelay : public testing::TestWithParam<Delay> {};

TEST_P(CloseButtonDelay, StartsWhenTheViewIsLoaded) {
    const support::RecordedEvents platform;
    ScreenHost host;
    const auto begin = std::chrono::steady_clock::now();
    VornaCoreSDK::ShowOnboarding(documentOf({basicStep("Only", {{"exitButtonDelay", GetParam().seconds}})}));
    EXPECT_EQ(host.find("exitButton"), nullptr);
    if (GetParam().isImmediate) {
        EXPECT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }, milliseconds(250)));
        return;
    }
    letTimePass(milliseconds(700));
    EXPECT_EQ(host.find("exitButton"), nullptr);
    if (GetParam().seconds == 1) {
        EXPECT_TRUE(eventually([&] { return host.find("exitButton") != nullptr; }));
        EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(999));
    }
    VornaCoreSDK::CloseOnboarding();
    letTimePass(milliseconds(20));
}

INSTANTIATE_TEST_SUITE_P(Seconds, CloseButtonDelay,
                         testing::Values(Delay{"Zero", 0, true}, Delay{"Negative", -5, true},
                                         Delay{"Minimum", std::numeric_limits<std::int64_t>::min(), true},
                                         Delay{"One", 1, false},
                                         Delay{"AThousandYears", 31'557'600'000, false},
                                         Delay{"Maximum", std::numeric_limits<std::int64_t>::max(), false}),
                         [](const auto& testCase) { return testCase.param.name; });

TEST(ErrorScreen, LogsThatItHasNoWindowOnlyWithDebugOn) {
    const support::RecordedEvents platform;
    PrintedLines printed;
    ui::showJSONErrorScreen("Paywall", "message");
    EXPECT_THAT(printed.take(), ElementsAre("[VornaSDK] ❌ Hata ekranı gösterilemedi: Top VC bulunamadı."));
    VornaCoreSDK::debug = false;
    ui::showJSONErrorScreen("Paywall", "message");
    EXPECT_THAT(printed.take(), IsEmpty());
}

TEST(OnboardingWithoutAWindow, IsLoggedAndNotShown) {
    const support::RecordedEvents platform;
    PrintedLines printed;
    VornaCoreSDK::ShowOnboarding(threeSteps());
    VornaCoreSDK::CloseOnboarding();
    EXPECT_THAT(printed.take(), ElementsAre(noTop, nothingToClose));
}

TEST(OnboardingInANavigationController, NeedsATopPage) {
    const support::RecordedEvents platform;
    ScreenHost host;
    host.window().setRootViewController(
        std::make_shared<ui::NavigationController>([] { return std::shared_ptr<ui::ViewController>(); }));
    PrintedLines printed;
    VornaCoreSDK::ShowOnboarding(threeSteps());
    EXPECT_THAT(printed.take(), ElementsAre(noTop));
    const auto page = std::make_shared<ui::ViewController>();
    host.window().setRootViewController(std::make_shared<ui::NavigationController>([page] { return page; }));
    VornaCoreSDK::ShowOnboarding(threeSteps());
    EXPECT_EQ(host.screens().size(), 1U);
    EXPECT_TRUE(host.window().isMoving());
}

}  // namespace
}  // namespace vorna
