// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/Window.h>

#include <tests/support/ui/PlainScreen.h>
#include <tests/support/ui/PrintedLines.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace vorna::ui {
namespace {

using std::chrono::milliseconds;
using support::eventually;
using support::letTimePass;
using support::PlainScreen;
using support::PrintedLines;
using support::ScreenHost;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto fullScreen = ModalPresentationStyle::fullScreen;
constexpr auto overFullScreen = ModalPresentationStyle::overFullScreen;
constexpr auto coverVertical = ModalTransitionStyle::coverVertical;
constexpr auto crossDissolve = ModalTransitionStyle::crossDissolve;

class Presentation : public testing::Test {
  protected:
    std::shared_ptr<PlainScreen> show(ModalPresentationStyle style = fullScreen) {
        auto screen = PlainScreen::make(style);
        top()->present(screen, false);
        return screen;
    }

    std::shared_ptr<ViewController> top() {
        const auto shown = host.screens();
        return shown.empty() ? host.window().rootViewController() : shown.back();
    }

    QQuickItem* hostLayer() { return host.content()->parentItem(); }

    /// Values taken repeatedly until nothing moves.
    std::vector<double> sample(const std::function<double()>& value) {
        std::vector<double> values;
        while (host.window().isMoving()) {
            values.push_back(value());
            letTimePass(milliseconds(5));
        }
        return values;
    }

    ScreenHost host{{400, 600}};
};

TEST_F(Presentation, IsImmediateWithoutAnAnimation) {
    int completions = 0;
    const auto screen = PlainScreen::make();
    top()->present(screen, false, [&] { ++completions; });
    EXPECT_EQ(completions, 1);
    EXPECT_FALSE(host.window().isMoving());
    EXPECT_EQ(screen->timesLoaded(), 1);
    EXPECT_EQ(screen->window(), &host.window());
    EXPECT_EQ(ScreenHost::geometry(screen->view()), QRectF(0, 0, 400, 600));
    EXPECT_THAT(host.screens(), ElementsAre(screen));
}

TEST_F(Presentation, HidesEverythingThatAFullScreenCovers) {
    const auto first = show();
    EXPECT_FALSE(hostLayer()->isVisible());
    const auto second = show();
    EXPECT_FALSE(hostLayer()->isVisible());
    EXPECT_FALSE(first->layer()->isVisible());
    EXPECT_TRUE(second->layer()->isVisible());
    second->dismiss(false);
    EXPECT_TRUE(first->layer()->isVisible());
    EXPECT_FALSE(hostLayer()->isVisible());
    first->dismiss(false);
    EXPECT_TRUE(hostLayer()->isVisible());
}

TEST_F(Presentation, KeepsScreensBelowVisibleOverFullScreen) {
    const auto first = show(overFullScreen);
    EXPECT_TRUE(hostLayer()->isVisible());
    const auto second = show(overFullScreen);
    EXPECT_TRUE(hostLayer()->isVisible());
    EXPECT_TRUE(first->layer()->isVisible());
    const auto third = show(fullScreen);
    EXPECT_FALSE(hostLayer()->isVisible());
    EXPECT_FALSE(first->layer()->isVisible());
    EXPECT_FALSE(second->layer()->isVisible());
    const auto fourth = show(overFullScreen);
    EXPECT_TRUE(third->layer()->isVisible());
    EXPECT_FALSE(second->layer()->isVisible());
}

TEST_F(Presentation, KeepsCoveredScreensVisibleUntilAnArrivalEnds) {
    const auto first = show(overFullScreen);
    const auto screen = PlainScreen::make();
    top()->present(screen, true);
    EXPECT_TRUE(hostLayer()->isVisible());
    EXPECT_TRUE(first->layer()->isVisible());
    host.settle();
    EXPECT_FALSE(hostLayer()->isVisible());
    EXPECT_FALSE(first->layer()->isVisible());
    screen->dismiss(true);
    EXPECT_TRUE(hostLayer()->isVisible());
    EXPECT_TRUE(first->layer()->isVisible());
    host.settle();
    EXPECT_TRUE(hostLayer()->isVisible());
}

TEST_F(Presentation, RisesFromBelowAndSinksBack) {
    const auto screen = PlainScreen::make(fullScreen, coverVertical);
    int completions = 0;
    top()->present(screen, true, [&] {
        ++completions;
        EXPECT_EQ(screen->layer()->position(), QPointF(0, 0));
        EXPECT_FALSE(hostLayer()->isVisible());
    });
    EXPECT_EQ(completions, 0);
    const std::vector<double> rising = sample([&] {
        EXPECT_EQ(screen->layer()->x(), 0);
        EXPECT_EQ(hostLayer()->position(), QPointF(0, 0));
        return screen->layer()->y();
    });
    ASSERT_GE(rising.size(), 5U);
    EXPECT_EQ(rising.front(), 600);
    EXPECT_TRUE(std::is_sorted(rising.rbegin(), rising.rend()));
    EXPECT_EQ(screen->layer()->y(), 0);
    EXPECT_EQ(completions, 1);

    QPointer<QQuickItem> layer = screen->layer();
    screen->dismiss(true, [&] { ++completions; });
    const std::vector<double> sinking = sample([&] { return layer->y(); });
    ASSERT_GE(sinking.size(), 5U);
    EXPECT_EQ(sinking.front(), 0);
    EXPECT_GT(sinking.back(), 300);
    EXPECT_TRUE(std::is_sorted(sinking.begin(), sinking.end()));
    EXPECT_EQ(completions, 2);
    EXPECT_TRUE(eventually([&] { return layer.isNull(); }));
}

TEST_F(Presentation, FadesInAndOut) {
    const auto screen = PlainScreen::make(overFullScreen, crossDissolve);
    top()->present(screen, true);
    const std::vector<double> fadingIn = sample([&] {
        EXPECT_EQ(screen->layer()->position(), QPointF(0, 0));
        return screen->layer()->opacity();
    });
    ASSERT_GE(fadingIn.size(), 5U);
    EXPECT_EQ(fadingIn.front(), 0);
    EXPECT_TRUE(std::is_sorted(fadingIn.begin(), fadingIn.end()));
    EXPECT_EQ(screen->layer()->opacity(), 1);

    QPointer<QQuickItem> layer = screen->layer();
    screen->dismiss(true);
    const std::vector<double> fadingOut = sample([&] { return layer->opacity(); });
    EXPECT_EQ(fadingOut.front(), 1);
    EXPECT_LT(fadingOut.back(), 0.5);
    EXPECT_TRUE(std::is_sorted(fadingOut.rbegin(), fadingOut.rend()));
}

TEST_F(Presentation, PushesOldAndNewTogetherFromTheRight) {
    const auto first = show();
    const auto second = PlainScreen::make();
    int completions = 0;
    QElapsedTimer time;
    time.start();
    host.window().addTransition({});
    top()->present(second, false, [&] { ++completions; });
    EXPECT_EQ(completions, 1) << "the screen is in place; only its picture still moves";
    EXPECT_TRUE(host.window().isMoving());
    const std::vector<double> coming = sample([&] {
        EXPECT_NEAR(first->layer()->x(), second->layer()->x() - 400, 1e-6);
        EXPECT_TRUE(first->layer()->isVisible());
        EXPECT_EQ(second->layer()->y(), 0);
        EXPECT_EQ(second->layer()->opacity(), 1);
        return second->layer()->x();
    });
    EXPECT_GE(time.elapsed(), 290);
    EXPECT_LE(time.elapsed(), 1500);
    ASSERT_GE(coming.size(), 5U);
    EXPECT_EQ(coming.front(), 400);
    EXPECT_TRUE(std::is_sorted(coming.rbegin(), coming.rend()));
    EXPECT_EQ(second->layer()->x(), 0);
    EXPECT_EQ(first->layer()->x(), 0);
    EXPECT_FALSE(first->layer()->isVisible());
    EXPECT_EQ(completions, 1);
}

TEST_F(Presentation, PushesTheHostOutToo) {
    host.window().addTransition({});
    const auto screen = show();
    sample([&] {
        EXPECT_NEAR(hostLayer()->x(), screen->layer()->x() - 400, 1e-6);
        EXPECT_TRUE(hostLayer()->isVisible());
        return 0.0;
    });
    EXPECT_EQ(hostLayer()->x(), 0);
    EXPECT_FALSE(hostLayer()->isVisible());
}

TEST(Transition, LastsThreeTenthsOfASecondAndEasesInAndOut) {
    const Transition transition;
    EXPECT_EQ(transition.style, TransitionStyle::pushFromRight);
    EXPECT_EQ(transition.duration, milliseconds(300));
    EXPECT_EQ(transition.timing.valueForProgress(0), 0);
    EXPECT_EQ(transition.timing.valueForProgress(1), 1);
    EXPECT_NEAR(transition.timing.valueForProgress(0.5), 0.5, 0.001);
    EXPECT_LT(transition.timing.valueForProgress(0.1), 0.1);
    EXPECT_GT(transition.timing.valueForProgress(0.9), 0.9);
}

TEST_F(Presentation, DropsATransitionNotUsedInItsTurn) {
    host.window().addTransition({});
    letTimePass(milliseconds(50));
    show();
    EXPECT_FALSE(host.window().isMoving());
}

TEST_F(Presentation, IsRefusedFromACoveredController) {
    const auto first = show();
    const auto second = show();
    PrintedLines printed;
    int completions = 0;
    const auto third = PlainScreen::make();
    first->present(third, true, [&] { ++completions; });
    host.window().rootViewController()->present(third, false, [&] { ++completions; });
    EXPECT_EQ(completions, 0);
    EXPECT_EQ(third->timesLoaded(), 0);
    EXPECT_EQ(third->window(), nullptr);
    EXPECT_THAT(host.screens(), ElementsAre(first, second));
    const std::string line =
        "[VornaSDK] ❌ Failed to present a screen: another screen covers the presenting controller";
    EXPECT_THAT(printed.take(), ElementsAre(line, line));
}

TEST_F(Presentation, IsRefusedFromAControllerThatIsNotOnScreen) {
    PrintedLines printed;
    const auto alone = PlainScreen::make();
    alone->present(PlainScreen::make(), true, [] { ADD_FAILURE(); });
    const auto dismissed = show();
    dismissed->dismiss(false);
    dismissed->present(PlainScreen::make(), true, [] { ADD_FAILURE(); });
    EXPECT_THAT(host.screens(), IsEmpty());
    const std::string line =
        "[VornaSDK] ❌ Failed to present a screen: the presenting controller is not on screen";
    EXPECT_THAT(printed.take(), ElementsAre(line, line));
}

TEST_F(Presentation, IsRefusedForAScreenThatIsOnScreen) {
    const auto first = show();
    PrintedLines printed;
    first->present(first, true, [] { ADD_FAILURE(); });
    first->present(nullptr, true, [] { ADD_FAILURE(); });
    EXPECT_THAT(host.screens(), ElementsAre(first));
    const std::string start = "[VornaSDK] ❌ Failed to present a screen: ";
    EXPECT_THAT(printed.take(),
                ElementsAre(start + "it is already on screen", start + "there is no screen to present"));
}

TEST_F(Presentation, FailsIfTheViewCannotBeCreated) {
    const auto screen = PlainScreen::make();
    screen->canLoad = false;
    PrintedLines printed;
    top()->present(screen, true, [] { ADD_FAILURE(); });
    EXPECT_THAT(printed.take(),
                ElementsAre("[VornaSDK] ❌ Failed to present a screen: its view could not be created"));
    EXPECT_THAT(host.screens(), IsEmpty());
    EXPECT_FALSE(host.window().isMoving());
    EXPECT_EQ(screen->window(), nullptr);
    EXPECT_TRUE(hostLayer()->isVisible());
    EXPECT_TRUE(hostLayer()->isEnabled());
    screen->canLoad = true;
    top()->present(screen, false);
    EXPECT_THAT(host.screens(), ElementsAre(screen));
}

TEST_F(Presentation, CanBeRepeatedWithTheSameController) {
    const auto screen = show();
    screen->dismiss(false);
    top()->present(screen, false);
    EXPECT_THAT(host.screens(), ElementsAre(screen));
    EXPECT_NE(screen->view(), nullptr);
    EXPECT_EQ(screen->timesLoaded(), 2);
    letTimePass(milliseconds(20));
    EXPECT_NE(screen->view(), nullptr) << "only the first view is deleted";
}

TEST_F(Presentation, DuringAnArrivalFinishesTheArrivalFirst) {
    std::vector<std::string> order;
    const auto first = PlainScreen::make();
    top()->present(first, true, [&] { order.emplace_back("first"); });
    letTimePass(milliseconds(60));
    const auto second = PlainScreen::make();
    top()->present(second, true, [&] { order.emplace_back("second"); });
    EXPECT_THAT(order, ElementsAre("first"));
    EXPECT_EQ(first->layer()->position(), QPointF(0, 0));
    host.settle();
    EXPECT_THAT(order, ElementsAre("first", "second"));
    EXPECT_THAT(host.screens(), ElementsAre(first, second));
}

TEST_F(Presentation, DuringADepartureFinishesTheDepartureFirst) {
    std::vector<std::string> order;
    const auto first = show();
    first->dismiss(true, [&] { order.emplace_back("gone"); });
    letTimePass(milliseconds(60));
    const auto second = PlainScreen::make();
    top()->present(second, true, [&] { order.emplace_back("second"); });
    EXPECT_THAT(order, ElementsAre("gone"));
    EXPECT_EQ(first->view(), nullptr);
    host.settle();
    EXPECT_THAT(order, ElementsAre("gone", "second"));
    EXPECT_THAT(host.screens(), ElementsAre(second));
}

TEST_F(Presentation, IgnoresTapsUntilItIsInPlace) {
    const auto screen = PlainScreen::make(fullScreen, crossDissolve);
    top()->present(screen, true);
    int tries = 0;
    while (host.window().isMoving()) {
        host.click(QPointF(200, 300));
        host.press(Qt::Key_Space);
        if (host.window().isMoving()) {
            ++tries;
            EXPECT_EQ(screen->counter()->taps() + screen->counter()->keys(), 0);
        }
        letTimePass(milliseconds(10));
    }
    EXPECT_GE(tries, 1);
    host.settle();
    const int taps = screen->counter()->taps();
    const int keys = screen->counter()->keys();
    host.click(QPointF(200, 300));
    host.press(Qt::Key_Space);
    EXPECT_EQ(screen->counter()->taps(), taps + 1);
    EXPECT_EQ(screen->counter()->keys(), keys + 1);
}

TEST_F(Presentation, FromAScreenBeingDismissedIsRefused) {
    const auto first = show();
    first->dismiss(true);
    first->present(PlainScreen::make(), false, [] { ADD_FAILURE(); });
    host.settle();
    EXPECT_THAT(host.screens(), IsEmpty());
    EXPECT_TRUE(hostLayer()->isVisible());
    EXPECT_TRUE(hostLayer()->isEnabled());
}

TEST_F(Presentation, CompletionMayPresentTheNext) {
    const auto first = PlainScreen::make();
    const auto second = PlainScreen::make();
    top()->present(first, true, [&] { first->present(second, true); });
    EXPECT_TRUE(eventually([&] { return host.screens().size() == 2 && !host.window().isMoving(); }));
    EXPECT_THAT(host.screens(), ElementsAre(first, second));
}

TEST_F(Presentation, CompletionMayDismissTheScreenThatHasArrived) {
    const auto first = PlainScreen::make();
    top()->present(first, true, [&] { first->dismiss(false); });
    EXPECT_TRUE(eventually([&] { return first->timesGone() == 1; }));
    EXPECT_THAT(host.screens(), IsEmpty());
    EXPECT_FALSE(host.window().isMoving());
    EXPECT_TRUE(hostLayer()->isVisible());
}

using Dismissal = Presentation;

TEST_F(Dismissal, OfTheTopmostLeavesTheOthers) {
    const auto first = show();
    const auto second = show();
    int completions = 0;
    second->dismiss(false, [&] { ++completions; });
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(second->timesGone(), 1);
    EXPECT_EQ(second->view(), nullptr);
    EXPECT_EQ(second->window(), nullptr);
    EXPECT_THAT(host.screens(), ElementsAre(first));
}

TEST_F(Dismissal, OfOneInTheMiddleLeavesTheOthers) {
    const auto first = show();
    const auto second = show();
    const auto third = show();
    int completions = 0;
    second->dismiss(true, [&] { ++completions; });
    EXPECT_EQ(completions, 1) << "it was not visible";
    EXPECT_FALSE(host.window().isMoving());
    EXPECT_THAT(host.screens(), ElementsAre(first, third));
    EXPECT_TRUE(third->layer()->isVisible());
    first->dismiss(false);
    EXPECT_THAT(host.screens(), ElementsAre(third));
    third->dismiss(false);
    EXPECT_TRUE(hostLayer()->isVisible());
    EXPECT_TRUE(hostLayer()->isEnabled());
}

TEST_F(Dismissal, OfAVisibleOneInTheMiddleAnimatesIt) {
    const auto first = show();
    const auto second = show(overFullScreen);
    QPointer<QQuickItem> layer = first->layer();
    first->dismiss(true);
    EXPECT_TRUE(host.window().isMoving());
    EXPECT_TRUE(hostLayer()->isVisible());
    EXPECT_FALSE(hostLayer()->isEnabled());
    EXPECT_TRUE(second->layer()->isEnabled());
    host.settle();
    EXPECT_TRUE(eventually([&] { return layer.isNull(); }));
    EXPECT_THAT(host.screens(), ElementsAre(second));
}

TEST_F(Dismissal, OfOneNotOnScreenDoesNothing) {
    const auto alone = PlainScreen::make();
    alone->dismiss(true, [] { ADD_FAILURE(); });
    host.window().rootViewController()->dismiss(true, [] { ADD_FAILURE(); });
    letTimePass(milliseconds(30));
    EXPECT_EQ(alone->timesGone(), 0);
    EXPECT_TRUE(hostLayer()->isVisible());
}

TEST_F(Dismissal, HappensOnce) {
    const auto screen = show();
    int completions = 0;
    screen->dismiss(true, [&] { ++completions; });
    screen->dismiss(true, [] { ADD_FAILURE() << "it is on its way out already"; });
    screen->dismiss(false, [] { ADD_FAILURE() << "it is on its way out already"; });
    EXPECT_TRUE(host.window().isMoving());
    host.settle();
    screen->dismiss(false, [] { ADD_FAILURE() << "it is gone"; });
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(screen->timesGone(), 1);
}

TEST_F(Dismissal, DuringItsOwnArrivalCompletesTheArrivalFirst) {
    std::vector<std::string> order;
    const auto screen = PlainScreen::make();
    top()->present(screen, true, [&] { order.emplace_back("there"); });
    letTimePass(milliseconds(50));
    screen->dismiss(true, [&] { order.emplace_back("gone"); });
    EXPECT_THAT(order, ElementsAre("there"));
    host.settle();
    EXPECT_THAT(order, ElementsAre("there", "gone"));
}

TEST_F(Dismissal, DestroysViewAndController) {
    auto screen = show();
    const QPointer<QQuickItem> view = screen->view();
    const QPointer<QQuickItem> layer = screen->layer();
    const std::weak_ptr<PlainScreen> controller = screen;
    screen->dismiss(false);
    screen.reset();
    EXPECT_TRUE(eventually([&] { return view.isNull() && layer.isNull() && controller.expired(); }));
}

TEST_F(Dismissal, MovesByTheAddedTransition) {
    const auto screen = show();
    const QPointer<QQuickItem> layer = screen->layer();
    int completions = 0;
    host.window().addTransition({TransitionStyle::crossDissolve, milliseconds(250), {}});
    screen->dismiss(false, [&] { ++completions; });
    EXPECT_EQ(completions, 1);
    EXPECT_TRUE(host.window().isMoving());
    EXPECT_THAT(host.screens(), IsEmpty());
    host.settle();
    EXPECT_TRUE(eventually([&] { return layer.isNull(); }));
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(hostLayer()->opacity(), 1);
}

using ClosingAWindow = Presentation;

TEST_F(ClosingAWindow, EndsAPresentedScreen) {
    auto screen = show();
    const std::weak_ptr<PlainScreen> controller = screen;
    host.close();
    EXPECT_EQ(screen->timesGone(), 1);
    EXPECT_EQ(screen->view(), nullptr);
    EXPECT_EQ(screen->window(), nullptr);
    EXPECT_EQ(Window::keyWindow(), nullptr);
    EXPECT_EQ(Window::firstWindow(), nullptr);
    screen.reset();
    EXPECT_TRUE(controller.expired());
}

TEST_F(ClosingAWindow, EndsAnArrivingScreen) {
    const auto below = show();
    const auto screen = PlainScreen::make();
    top()->present(screen, true, [] { ADD_FAILURE() << "it never arrives"; });
    letTimePass(milliseconds(50));
    host.close();
    EXPECT_EQ(screen->timesGone(), 1);
    EXPECT_EQ(below->timesGone(), 1);
    letTimePass(milliseconds(500));
}

TEST_F(ClosingAWindow, EndsALeavingScreen) {
    const auto screen = show();
    screen->dismiss(true, [] { ADD_FAILURE() << "the window has gone"; });
    letTimePass(milliseconds(50));
    host.close();
    EXPECT_EQ(screen->timesGone(), 1);
    letTimePass(milliseconds(500));
}

TEST_F(ClosingAWindow, MayComeWithinACompletion) {
    const auto first = PlainScreen::make();
    top()->present(first, true, [&] { host.close(); });
    EXPECT_TRUE(eventually([&] { return first->timesGone() == 1; }));
    EXPECT_EQ(Window::keyWindow(), nullptr);
}

TEST_F(ClosingAWindow, MayComeWithinACompletionTriggeredByAnotherPresentation) {
    const auto first = PlainScreen::make();
    const auto second = PlainScreen::make();
    top()->present(first, true, [&] { host.close(); });
    first->present(second, true, [] { ADD_FAILURE(); });
    EXPECT_EQ(first->timesGone(), 1);
    EXPECT_EQ(second->window(), nullptr);
    EXPECT_EQ(Window::keyWindow(), nullptr);
}

TEST_F(ClosingAWindow, MayComeWithinACompletionTriggeredByADismissal) {
    const auto first = show();
    const auto second = PlainScreen::make();
    top()->present(second, true, [&] { host.close(); });
    first->dismiss(true, [] { ADD_FAILURE(); });
    EXPECT_EQ(first->timesGone(), 1);
    EXPECT_EQ(Window::keyWindow(), nullptr);
}

TEST_F(ClosingAWindow, MayComeWithinTheCompletionOfADismissal) {
    const auto screen = show();
    screen->dismiss(false, [&] { host.close(); });
    EXPECT_EQ(Window::keyWindow(), nullptr);
    EXPECT_EQ(screen->timesGone(), 1);
}

}  // namespace
}  // namespace vorna::ui
