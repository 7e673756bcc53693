// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/PaidDocument.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtGui/QPointingDevice>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using support::eventually;
using support::ScreenHost;
using testing::ElementsAre;

std::vector<QQuickItem*> cellsIn(ScreenHost& host) {
    std::vector<QQuickItem*> cells = support::findItems(host.topView(), "productCell");
    std::sort(cells.begin(), cells.end(), [](const QQuickItem* left, const QQuickItem* right) {
        return left->property("index").toInt() < right->property("index").toInt();
    });
    return cells;
}

struct Expected {
    const char* name;
    QSize size;
    double rowWidth;
    double rowHeight;
    double itemHeightOnThePaywall;
    double itemHeightOnTheStep;
    /// For 1, 2, 3 and 6 products.
    std::vector<std::pair<int, double>> itemWidths;
};

void PrintTo(const Expected& expected, std::ostream* stream) {
    *stream << expected.name;
}

const std::vector<Expected>& sizes() {
    static const std::vector<Expected> value{
        {"W320H568", {320, 568}, 288, 160, 160, 150, {{1, 288}, {2, 139}, {3, 89.333}, {6, 80}}},
        {"W375H667", {375, 667}, 337.5, 160, 160, 150, {{1, 337.5}, {2, 163.75}, {3, 105.833}, {6, 80}}},
        {"W375H668", {375, 668}, 337.5, 190, 150, 160, {{1, 337.5}, {2, 163.75}, {3, 105.833}, {6, 80}}},
        {"W414H736", {414, 736}, 372.6, 190, 150, 160, {{1, 372.6}, {2, 181.3}, {3, 117.533}, {6, 80}}},
        {"W414H737", {414, 737}, 372.6, 190, 178, 178, {{1, 372.6}, {2, 181.3}, {3, 117.533}, {6, 80}}},
        {"W390H844", {390, 844}, 351, 190, 178, 178, {{1, 351}, {2, 170.5}, {3, 110.333}, {6, 80}}},
        {"W414H896", {414, 896}, 372.6, 190, 178, 178, {{1, 372.6}, {2, 181.3}, {3, 117.533}, {6, 80}}},
        {"W820H1180", {820, 1180}, 738, 190, 178, 178, {{1, 738}, {2, 364}, {3, 239.333}, {6, 114.667}}}};
    return value;
}

class RowGeometry : public testing::TestWithParam<Expected> {
  protected:
    static void check(ScreenHost& host, const Expected& expected, double itemHeight, int count,
                      double itemWidth) {
        SCOPED_TRACE(std::to_string(count) + " products");
        const QRectF row = ScreenHost::geometry(host.find("collectionView"));
        EXPECT_NEAR(row.width(), expected.rowWidth, 0.001);
        EXPECT_EQ(row.height(), expected.rowHeight);
        EXPECT_NEAR(row.center().x(), expected.size.width() / 2.0, 0.51);
        const std::vector<QQuickItem*> cells = cellsIn(host);
        ASSERT_EQ(cells.size(), static_cast<std::size_t>(count));
        for (std::size_t index = 0; index < cells.size(); ++index) {
            const QRectF cell = ScreenHost::geometry(cells[index]);
            EXPECT_NEAR(cell.width(), itemWidth, 0.001);
            EXPECT_EQ(cell.height(), itemHeight);
            EXPECT_NEAR(cell.left(), row.left() + static_cast<double>(index) * (itemWidth + 10), 0.01);
            EXPECT_EQ(cell.center().y(), row.center().y());
        }
    }
};

TEST_P(RowGeometry, MatchesTheDesignOnAPaywall) {
    const Expected& expected = GetParam();
    const support::RecordedEvents platform;
    for (const auto& [count, itemWidth] : expected.itemWidths) {
        ScreenHost host(expected.size);
        VornaCoreSDK::ShowPaywall(support::paywallText({{"paidProducts", support::products(count)}}));
        ASSERT_TRUE(eventually([&] { return host.screens().size() == 1; }));
        host.settle();
        check(host, expected, expected.itemHeightOnThePaywall, count, itemWidth);
    }
}

TEST_P(RowGeometry, MatchesTheDesignOnAnOnboardingStep) {
    const Expected& expected = GetParam();
    const support::RecordedEvents platform;
    for (const auto& [count, itemWidth] : expected.itemWidths) {
        ScreenHost host(expected.size);
        VornaCoreSDK::ShowOnboarding(boost::json::serialize(
            boost::json::array{support::paywallStep({{"paidProducts", support::products(count)}})}));
        host.settle();
        check(host, expected, expected.itemHeightOnTheStep, count, itemWidth);
    }
}

INSTANTIATE_TEST_SUITE_P(Screens, RowGeometry, testing::ValuesIn(sizes()),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

class ShownRow : public testing::Test {
  protected:
    void show(int count, QSize size = {390, 844}) {
        host_ = std::make_unique<ScreenHost>(size);
        VornaCoreSDK::ShowPaywall(support::paywallText({{"paidProducts", support::products(count)}}));
        ASSERT_TRUE(eventually([&] { return host_->screens().size() == 1; }));
        host_->settle();
    }

    QQuickItem* row() { return host_->find("collectionView"); }

    double scrolled() { return row()->property("contentX").toDouble(); }

    void swipe(int distance) {
        static QPointingDevice* const screen = QTest::createTouchDevice();
        QQuickWindow* const window = &host_->quickWindow();
        const QPoint begin = ScreenHost::geometry(row()).center().toPoint();
        QTest::touchEvent(window, screen).press(0, begin, window);
        constexpr int steps = 10;
        for (int step = 1; step <= steps; ++step) {
            support::letTimePass(std::chrono::milliseconds(16));
            QTest::touchEvent(window, screen).move(0, begin + QPoint(distance * step / steps, 0), window);
        }
        QTest::touchEvent(window, screen).release(0, begin + QPoint(distance, 0), window);
        settleRow();
    }

    void turnWheel(QPoint angle) {
        const QPointF position = ScreenHost::geometry(row()).center();
        QWheelEvent event(position, host_->quickWindow().mapToGlobal(position), {}, angle, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&host_->quickWindow(), &event);
        settleRow();
    }

    void settleRow() {
        support::letTimePass(std::chrono::milliseconds(50));
        EXPECT_TRUE(eventually([&] { return !row()->property("moving").toBool(); }));
    }

    /// The index of the cell with the keyboard focus; -1 if none has it.
    int focused() {
        const std::vector<QQuickItem*> cells = cellsIn(*host_);
        for (std::size_t index = 0; index < cells.size(); ++index) {
            if (cells[index]->hasActiveFocus()) {
                return static_cast<int>(index);
            }
        }
        return -1;
    }

    bool isVisible(int index) {
        const QRectF cell = ScreenHost::geometry(cellsIn(*host_)[static_cast<std::size_t>(index)]);
        return ScreenHost::geometry(row()).adjusted(-0.5, 0, 0.5, 0).contains(cell);
    }

    /// Presses Tab until a cell has the focus.
    void tabIntoTheRow() {
        for (int press = 0; press < 10 && focused() < 0; ++press) {
            host_->press(Qt::Key_Tab);
        }
    }

    const support::RecordedEvents platform_;
    std::unique_ptr<ScreenHost> host_;
};

TEST_F(ShownRow, ScrollsBySwipingIfTheCellsDoNotFit) {
    show(6);
    swipe(-120);
    EXPECT_GT(scrolled(), 60);
    EXPECT_TRUE(host_->notifications().empty()) << "a swipe is not a tap";
    swipe(-400);
    swipe(-400);
    EXPECT_NEAR(scrolled(), 6 * 80 + 5 * 10 - 351, 0.5) << "the end of the row";
    EXPECT_TRUE(isVisible(5));
}

TEST_F(ShownRow, ScrollsByBothWheelsIfTheCellsDoNotFit) {
    show(6);
    turnWheel({-120, 0});
    const double sideways = scrolled();
    EXPECT_GT(sideways, 10);
    turnWheel({0, -120});
    EXPECT_GT(scrolled(), sideways + 10) << "most mice have only a vertical wheel";
    turnWheel({0, 1200});
    turnWheel({0, 1200});
    EXPECT_EQ(scrolled(), 0);
    for (int turn = 0; turn < 10; ++turn) {
        turnWheel({0, -240});
    }
    EXPECT_NEAR(scrolled(), 6 * 80 + 5 * 10 - 351, 0.5);
}

TEST_F(ShownRow, ScrollsBackWhenTheWindowGrows) {
    show(6);
    swipe(-300);
    swipe(-300);
    ASSERT_GT(scrolled(), 100);
    host_->quickWindow().resize(1180, 820);
    ASSERT_TRUE(eventually([&] { return row()->width() == 1180 * 0.9; }));
    settleRow();
    EXPECT_EQ(scrolled(), 0);
    EXPECT_TRUE(isVisible(0));
    EXPECT_TRUE(isVisible(5));
}

TEST_F(ShownRow, DoesNotScrollIfAllCellsFit) {
    for (const int count : {1, 2, 3}) {
        SCOPED_TRACE(count);
        show(count);
        swipe(-120);
        EXPECT_EQ(scrolled(), 0);
        turnWheel({-240, 0});
        turnWheel({0, -240});
        EXPECT_EQ(scrolled(), 0);
        host_.reset();
    }
}

TEST_F(ShownRow, ClipsShadowsOnlyIfItScrolls) {
    show(3);
    EXPECT_FALSE(row()->clip());
    host_.reset();
    show(6);
    EXPECT_TRUE(row()->clip());
}

TEST_F(ShownRow, FollowsTheArrowKeysAndScrollsToTheFocusedCell) {
    show(6);
    tabIntoTheRow();
    ASSERT_EQ(focused(), 0);
    for (int index = 1; index < 6; ++index) {
        host_->press(Qt::Key_Right);
        EXPECT_EQ(focused(), index);
        settleRow();
        EXPECT_TRUE(isVisible(index));
        EXPECT_TRUE(cellsIn(*host_)[static_cast<std::size_t>(index)]->property("visualFocus").toBool())
            << "the focus is visible";
    }
    host_->press(Qt::Key_Right);
    EXPECT_EQ(focused(), 5) << "the row ends there";
    for (int index = 4; index >= 0; --index) {
        host_->press(Qt::Key_Left);
        EXPECT_EQ(focused(), index);
        settleRow();
        EXPECT_TRUE(isVisible(index));
    }
    EXPECT_TRUE(host_->notifications().empty()) << "moving the focus selects nothing";
}

TEST_F(ShownRow, IsMirroredForRightToLeftText) {
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    show(6);
    EXPECT_TRUE(isVisible(0));
    EXPECT_NEAR(ScreenHost::geometry(cellsIn(*host_)[0]).right(), ScreenHost::geometry(row()).right(), 0.5);
    for (int turn = 0; turn < 10; ++turn) {
        turnWheel({0, -240});
    }
    EXPECT_TRUE(isVisible(5));
    EXPECT_FALSE(isVisible(0));
    for (int turn = 0; turn < 10; ++turn) {
        turnWheel({0, 240});
    }
    EXPECT_TRUE(isVisible(0));
    tabIntoTheRow();
    ASSERT_EQ(focused(), 0);
    host_->press(Qt::Key_Right);
    EXPECT_EQ(focused(), 0) << "the row begins there";
    for (int index = 1; index < 6; ++index) {
        host_->press(Qt::Key_Left);
        EXPECT_EQ(focused(), index);
        settleRow();
        EXPECT_TRUE(isVisible(index));
    }
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(ShownRow, MovesTheFocusOnFromACellReachedByTabOrTap) {
    show(6);
    tabIntoTheRow();
    host_->press(Qt::Key_Tab);
    host_->press(Qt::Key_Tab);
    ASSERT_EQ(focused(), 2);
    host_->press(Qt::Key_Right);
    EXPECT_EQ(focused(), 3);
    host_->click(cellsIn(*host_)[1]);
    EXPECT_EQ(focused(), 1);
    host_->press(Qt::Key_Left);
    EXPECT_EQ(focused(), 0);
}

TEST_F(ShownRow, ScrollsToACellReachedByTab) {
    show(6);
    tabIntoTheRow();
    for (int press = 0; press < 5; ++press) {
        host_->press(Qt::Key_Tab);
    }
    ASSERT_EQ(focused(), 5);
    settleRow();
    EXPECT_TRUE(isVisible(5));
}

std::vector<std::string> identifiersOf(const std::vector<Notification>& notifications) {
    std::vector<std::string> identifiers;
    for (const Notification& notification : notifications) {
        EXPECT_EQ(notification.name, "Vorna_PaidProductClicked");
        EXPECT_EQ(notification.userInfo.size(), 1U);
        identifiers.push_back(std::get<std::string>(notification.userInfo.at("identifier")));
    }
    return identifiers;
}

std::vector<bool> selectedIn(ScreenHost& host) {
    std::vector<bool> selected;
    for (const QQuickItem* const cell : cellsIn(host)) {
        const auto* const container = support::findItem(const_cast<QQuickItem*>(cell), "containerView");
        selected.push_back(container->property("color").value<QColor>() == QColor(0x20, 0x40, 0x60));
    }
    return selected;
}

TEST_F(ShownRow, SelectsByMouse) {
    show(3);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, true, false));
    host_->click(cellsIn(*host_)[2]);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, false, true));
    host_->click(cellsIn(*host_)[2]);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, false, true)) << "nothing deselects";
    host_->click(cellsIn(*host_)[0]);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(true, false, false));
    EXPECT_THAT(identifiersOf(host_->notifications()), ElementsAre("p2", "p2", "p0"));
}

TEST_F(ShownRow, SelectsByTouch) {
    show(3);
    host_->touch(cellsIn(*host_)[0]);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(true, false, false));
    host_->touch(cellsIn(*host_)[2]);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, false, true));
    EXPECT_THAT(identifiersOf(host_->notifications()), ElementsAre("p0", "p2"));
}

TEST_F(ShownRow, SelectsByKeyboard) {
    show(3);
    tabIntoTheRow();
    host_->press(Qt::Key_Space);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(true, false, false));
    host_->press(Qt::Key_Right);
    host_->press(Qt::Key_Return);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, true, false));
    host_->press(Qt::Key_Right);
    host_->press(Qt::Key_Enter);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, false, true));
    EXPECT_THAT(identifiersOf(host_->notifications()), ElementsAre("p0", "p1", "p2"));
}

TEST_F(ShownRow, SelectsAProductAfterSwipingToIt) {
    show(6);
    swipe(-300);
    swipe(-300);
    host_->touch(cellsIn(*host_)[5]);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, false, false, false, false, true));
    EXPECT_THAT(identifiersOf(host_->notifications()), ElementsAre("p5"));
}

TEST_F(ShownRow, InitiallySelectsTheFirstOfTwoProductsWithTheSameIdentifier) {
    host_ = std::make_unique<ScreenHost>(QSize(390, 844));
    VornaCoreSDK::ShowPaywall(support::paywallText(
        {{"paidProducts",
          boost::json::array{support::product("a"), support::product("b"), support::product("b")}},
         {"selectedPaidProduct", "b"}}));
    ASSERT_TRUE(eventually([&] { return host_->screens().size() == 1; }));
    host_->settle();
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, true, false));
    host_->click(cellsIn(*host_)[2]);
    EXPECT_THAT(selectedIn(*host_), ElementsAre(false, false, true)) << "by position, not by identifier";
}

TEST_F(ShownRow, TellsAssistiveTechnologyAboutTheSelection) {
    QAccessible::setActive(true);
    show(3);
    const std::vector<QQuickItem*> cells = cellsIn(*host_);
    const auto isChecked = [&](std::size_t index) {
        return QAccessible::queryAccessibleInterface(cells[index])->state().checked == 1;
    };
    for (QQuickItem* const cell : cells) {
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(cell);
        ASSERT_NE(accessible, nullptr);
        EXPECT_EQ(accessible->role(), QAccessible::RadioButton);
        EXPECT_TRUE(accessible->state().checkable);
        EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Title, $9.99"));
    }
    EXPECT_FALSE(isChecked(0));
    EXPECT_TRUE(isChecked(1));
    EXPECT_FALSE(isChecked(2));

    // Without a bridge to assistive technology Qt sends no events; the state changes that would cause them
    // are observed instead.
    QSignalSpy before(cells[1], SIGNAL(checkedChanged()));
    QSignalSpy now(cells[2], SIGNAL(checkedChanged()));
    host_->click(cells[2]);
    EXPECT_FALSE(isChecked(1));
    EXPECT_TRUE(isChecked(2));
    EXPECT_EQ(before.count(), 1);
    EXPECT_EQ(now.count(), 1);
    host_->click(cells[2]);
    EXPECT_TRUE(isChecked(2));
    EXPECT_EQ(now.count(), 1);

    // Actions of assistive technology select as well.
    QAccessible::queryAccessibleInterface(cells[0])->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(isChecked(0));
    EXPECT_FALSE(isChecked(2));
    QAccessible::queryAccessibleInterface(cells[1])->actionInterface()->doAction(
        QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(isChecked(1));
    EXPECT_FALSE(isChecked(0));
    EXPECT_THAT(identifiersOf(host_->notifications()), ElementsAre("p2", "p2", "p0", "p1"));
}

}  // namespace
}  // namespace vorna
