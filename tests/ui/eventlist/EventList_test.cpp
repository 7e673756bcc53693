// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/SharedInstance.h>
#include <vorna/core/VornaCoreSDK.h>
#include <vorna/ui/common/NavigationController.h>
#include <vorna/ui/eventlist/EventListModel.h>
#include <vorna/ui/eventlist/EventListViewController.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtCore/QAbstractItemModel>
#include <QtGui/QAccessible>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vorna {
namespace {

using support::eventually;
using support::findItem;
using support::findItems;
using support::ScreenHost;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

/// Does the same as the worker after passing an event to the network.
void record(std::string name, std::optional<std::string> customValue = std::nullopt) {
    SharedInstance::get().eventListManager->append({std::move(name), std::move(customValue)});
    NotificationCenter::defaultCenter().post(VornaCoreSDK::EventListUpdated);
}

class EventListScreen : public testing::Test {
  protected:
    void show() {
        const std::size_t before = host_.screens().size();
        VornaCoreSDK::ShowEventList();
        ASSERT_TRUE(eventually([&] { return host_.screens().size() == before + 1; }));
        host_.settle();
    }

    QQuickItem* table() { return host_.find("tableView"); }

    QAbstractItemModel* model() { return table()->property("model").value<QAbstractItemModel*>(); }

    /// The visible rows, from the top.
    std::vector<QQuickItem*> rows() {
        std::vector<QQuickItem*> found;
        for (QQuickItem* const row : findItems(table(), "eventRow")) {
            const QRectF place = ScreenHost::geometry(row);
            if (row->isVisible() && place.intersects(ScreenHost::geometry(table()))) {
                found.push_back(row);
            }
        }
        std::sort(found.begin(), found.end(), [](const QQuickItem* one, const QQuickItem* other) {
            return ScreenHost::geometry(one).top() < ScreenHost::geometry(other).top();
        });
        return found;
    }

    std::vector<std::string> lines() {
        std::vector<std::string> texts;
        for (QQuickItem* const row : rows()) {
            texts.push_back(findItem(row, "label")->property("text").toString().toStdString());
        }
        return texts;
    }

    void drag(QPointF from, QPointF to) {
        QTest::mousePress(&host_.quickWindow(), Qt::LeftButton, {}, from.toPoint());
        for (int step = 1; step <= 10; ++step) {
            QTest::mouseMove(&host_.quickWindow(), (from + (to - from) * step / 10.0).toPoint());
            support::letTimePass(std::chrono::milliseconds(10));
        }
        QTest::mouseRelease(&host_.quickWindow(), Qt::LeftButton, {}, to.toPoint());
    }

    const support::RecordedEvents platform_;
    ScreenHost host_;
};

TEST_F(EventListScreen, IsEmptyWithoutEvents) {
    show();
    EXPECT_THAT(lines(), IsEmpty());
    EXPECT_EQ(host_.find("barTitle")->property("text").toString(), QStringLiteral("Event List"));
}

TEST_F(EventListScreen, IsPresentedLaterAnimatedAndFullScreen) {
    VornaCoreSDK::ShowEventList();
    EXPECT_THAT(host_.screens(), IsEmpty()) << "the call returns immediately";
    ASSERT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    EXPECT_TRUE(host_.window().isMoving());
    host_.settle();
    EXPECT_EQ(ScreenHost::geometry(host_.topView()), QRectF(0, 0, 375, 667));
    EXPECT_FALSE(host_.content()->isVisible());
    EXPECT_EQ(host_.picture().pixelColor(200, 600), QColor(Qt::white));
}

TEST_F(EventListScreen, GivesItsPartsRolesAndNamesForAssistiveTechnology) {
    QAccessible::setActive(true);
    record("Purchase", "42");
    show();
    const auto is = [](QQuickItem* item, QAccessible::Role role, const char* spoken) {
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(item);
        ASSERT_NE(accessible, nullptr) << spoken;
        EXPECT_EQ(accessible->role(), role) << spoken;
        EXPECT_EQ(accessible->text(QAccessible::Name).toStdString(), spoken);
    };
    is(host_.find("barTitle"), QAccessible::Heading, "Event List");
    is(host_.find("leftBarButton"), QAccessible::Button, "Close");
    is(table(), QAccessible::List, "Event List");
    is(rows().front(), QAccessible::ListItem, "Purchase | 42");
    QAccessible::queryAccessibleInterface(host_.find("leftBarButton"))
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(eventually([&] { return host_.screens().empty(); }));
}

TEST_F(EventListScreen, IgnoresTapsOnRows) {
    record("Purchase", "42");
    show();
    host_.click(rows().front());
    host_.touch(rows().front());
    support::letTimePass(std::chrono::milliseconds(50));
    EXPECT_EQ(host_.screens().size(), 1U);
    EXPECT_FALSE(host_.window().isMoving());
    EXPECT_THAT(lines(), ElementsAre("Purchase | 42"));
}

TEST_F(EventListScreen, ShowsNamesAndValuesNewestFirst) {
    record("first");
    record("Purchase", "42");
    record("empty", "");
    show();
    EXPECT_THAT(lines(), ElementsAre("empty", "Purchase | 42", "first"));
}

TEST_F(EventListScreen, AddsNewEventsAtTheTop) {
    record("first");
    show();
    record("second", "2");
    EXPECT_TRUE(eventually([&] { return lines().size() == 2; }));
    EXPECT_THAT(lines(), ElementsAre("second | 2", "first"));
}

TEST_F(EventListScreen, KeepsItsScrollPositionWhenEventsAreAdded) {
    for (int number = 0; number < 100; ++number) {
        record("event " + std::to_string(number));
    }
    show();
    table()->setProperty("contentY", 440.0);
    host_.settle();
    const std::string before = lines().front();
    record("new");
    EXPECT_TRUE(eventually([&] { return model()->rowCount() == 101; }));
    EXPECT_EQ(table()->property("contentY").toDouble(), 440.0);
    // The position is unchanged, and every entry has moved down by one.
    EXPECT_NE(lines().front(), before);
    EXPECT_EQ(lines().at(1), before);
}

TEST_F(EventListScreen, ScrollsALongLineSidewaysWithoutWrappingIt) {
    const std::string name(200, 'x');
    record("short");
    record(name);
    show();
    QQuickItem* const row = rows().front();
    QQuickItem* const label = findItem(row, "label");
    QQuickItem* const scroll = findItem(row, "scrollView");
    EXPECT_EQ(label->property("lineCount").toInt(), 1);
    EXPECT_EQ(label->x(), 10);
    EXPECT_EQ(label->height(), row->height());
    EXPECT_EQ(scroll->property("contentWidth").toDouble(), label->width() + 20);
    EXPECT_GT(label->width(), row->width());
    const QPointF middle = ScreenHost::geometry(row).center();
    drag(middle, middle - QPointF(150, 0));
    EXPECT_TRUE(eventually([&] { return scroll->property("contentX").toDouble() > 100; }));
    EXPECT_EQ(findItem(rows().at(1), "scrollView")->property("contentX").toDouble(), 0);
    EXPECT_EQ(table()->property("contentY").toDouble(), 0);
}

TEST_F(EventListScreen, ScrollsRowsBackWhenEventsAreAdded) {
    record(std::string(200, 'x'));
    show();
    const auto moved = [&](std::size_t row) {
        return findItem(rows().at(row), "scrollView")->property("contentX").toDouble();
    };
    const QPointF middle = ScreenHost::geometry(rows().front()).center();
    drag(middle, middle - QPointF(150, 0));
    ASSERT_TRUE(eventually([&] { return moved(0) > 100; }));
    record("short");
    ASSERT_TRUE(eventually([&] { return lines().size() == 2; }));
    host_.settle();
    EXPECT_EQ(lines().front(), "short");
    EXPECT_EQ(moved(0), 0) << "a short line cannot be scrolled back";
    EXPECT_EQ(moved(1), 0);
}

TEST_F(EventListScreen, ScrollsRowsBackWhenEventsAreAddedDuringAFlick) {
    record(std::string(300, 'x'));
    show();
    QQuickItem* const scroll = findItem(rows().front(), "scrollView");
    const QPointF middle = ScreenHost::geometry(scroll).center();
    drag(middle, middle - QPointF(150, 0));
    ASSERT_TRUE(scroll->property("flicking").toBool());
    record(std::string(300, 'y'));
    ASSERT_TRUE(eventually([&] { return lines().size() == 2; }));
    support::letTimePass(std::chrono::milliseconds(100));
    EXPECT_EQ(scroll->property("contentX").toDouble(), 0);
}

TEST_F(EventListScreen, ScrollsALineBackWhenTheWindowGrows) {
    record(std::string(60, 'x'));
    show();
    const QPointF middle = ScreenHost::geometry(rows().front()).center();
    drag(middle, middle - QPointF(150, 0));
    QQuickItem* const scroll = findItem(rows().front(), "scrollView");
    ASSERT_TRUE(eventually([&] { return scroll->property("contentX").toDouble() > 100; }));
    host_.settle();
    host_.quickWindow().resize(1180, 820);
    ASSERT_TRUE(eventually([&] { return table()->width() == 1180; }));
    EXPECT_TRUE(eventually([&] { return scroll->property("contentX").toDouble() == 0; }));
}

TEST_F(EventListScreen, ShowsANameWithALineBreakOnOneLine) {
    record("two\nlines");
    show();
    EXPECT_EQ(findItem(rows().front(), "label")->property("lineCount").toInt(), 1);
}

TEST_F(EventListScreen, ShowsMarkupLiterally) {
    record("<b>bold</b>", "&amp;");
    show();
    EXPECT_THAT(lines(), ElementsAre("<b>bold</b> | &amp;"));
    EXPECT_EQ(findItem(rows().front(), "label")->property("textFormat").toInt(), 0);
}

TEST_F(EventListScreen, IsClosedByItsButton) {
    show();
    const std::weak_ptr<ui::ViewController> screen = host_.screens().back();
    host_.click(host_.find("leftBarButton"));
    EXPECT_TRUE(eventually([&] { return host_.screens().empty() && screen.expired(); }));
    record("after closing");
    host_.settle();
}

TEST_F(EventListScreen, IsClosedByItsButtonFromTheKeyboard) {
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        show();
        host_.press(key);
        EXPECT_TRUE(eventually([&] { return host_.screens().empty(); }));
        host_.settle();
    }
}

TEST_F(EventListScreen, IsClosedByTheFacade) {
    show();
    VornaCoreSDK::CloseEventList();
    EXPECT_TRUE(eventually([&] { return host_.screens().empty(); }));
}

TEST_F(EventListScreen, IsPresentedOverAnEarlierOne) {
    show();
    show();
    EXPECT_EQ(host_.screens().size(), 2U);
    VornaCoreSDK::CloseEventList();
    EXPECT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
}

TEST_F(EventListScreen, ClosingDismissesTheTopmostScreen) {
    show();
    VornaCoreSDK::ShowPaywall("{}");
    EXPECT_TRUE(eventually([&] { return host_.screens().size() == 2; }));
    VornaCoreSDK::CloseEventList();
    EXPECT_TRUE(eventually([&] { return host_.screens().size() == 1; }));
    EXPECT_NE(dynamic_cast<ui::NavigationController*>(host_.screens().back().get()), nullptr);
}

TEST_F(EventListScreen, ClosingWithoutScreensDoesNothing) {
    VornaCoreSDK::debug = true;
    CaptureStdout();
    VornaCoreSDK::CloseEventList();
    support::letTimePass(std::chrono::milliseconds(50));
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST_F(EventListScreen, StartsBelowTheTopInset) {
    host_.window().setSafeAreaInsets({0, 47, 0, 34});
    show();
    EXPECT_EQ(ScreenHost::geometry(host_.find("navigationBar")).height(), 47 + 44);
    EXPECT_EQ(ScreenHost::geometry(table()).top(), 47 + 44);
}

TEST_F(EventListScreen, ReloadsOncePerFrame) {
    record("first");
    show();
    int reloads = 0;
    QObject::connect(model(), &QAbstractItemModel::rowsInserted, model(), [&] { ++reloads; });
    for (int number = 0; number < 500; ++number) {
        record("event " + std::to_string(number));
    }
    EXPECT_TRUE(eventually([&] { return model()->rowCount() == 501; }));
    EXPECT_EQ(reloads, 1);
}

TEST_F(EventListScreen, KeepsUpWithAThousandEventsPerSecond) {
    for (int number = 0; number < 10'000; ++number) {
        SharedInstance::get().eventListManager->append({"event " + std::to_string(number), "value"});
    }
    show();
    ASSERT_EQ(model()->rowCount(), 10'000);
    int reloads = 0;
    std::atomic<int> frames = 0;
    QObject::connect(model(), &QAbstractItemModel::rowsInserted, model(), [&] { ++reloads; });
    QObject::connect(
        &host_.quickWindow(), &QQuickWindow::afterRendering, &host_.quickWindow(), [&] { ++frames; },
        Qt::DirectConnection);
    std::thread worker([] {
        for (int number = 0; number < 2'000; ++number) {
            record("live " + std::to_string(number), "value");
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    EXPECT_TRUE(eventually([&] { return model()->rowCount() == 12'000; }));
    worker.join();
    EXPECT_GT(reloads, 1);
    EXPECT_LE(reloads, frames + 1) << "at most one per frame";
    // Rows are reused, so there are only a few more than fit.
    EXPECT_LT(findItems(table(), "eventRow").size(), 60U);
    host_.settle();
    EXPECT_EQ(lines().front(), "live 1999 | value");
}

TEST(ShowEventList, WithoutAWindowIsLoggedOnlyWithDebugOn) {
    const support::RecordedEvents platform;
    CaptureStdout();
    VornaCoreSDK::ShowEventList();
    EXPECT_EQ(GetCapturedStdout(), "");
    VornaCoreSDK::debug = true;
    CaptureStdout();
    VornaCoreSDK::ShowEventList();
    EXPECT_EQ(GetCapturedStdout(), "[VornaSDK] ❌ Failed to find top view controller\n");
}

TEST(CloseEventList, WithoutAWindowDoesNothingAndPrintsNothing) {
    const support::RecordedEvents platform;
    VornaCoreSDK::debug = true;
    CaptureStdout();
    VornaCoreSDK::CloseEventList();
    {
        ScreenHost host;
        host.close();
        VornaCoreSDK::CloseEventList();
        support::letTimePass(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(ShowEventList, AfterTheWindowIsGoneIsLogged) {
    const support::RecordedEvents platform;
    ScreenHost host;
    host.close();
    VornaCoreSDK::debug = true;
    CaptureStdout();
    VornaCoreSDK::ShowEventList();
    support::letTimePass(std::chrono::milliseconds(50));
    EXPECT_EQ(GetCapturedStdout(), "[VornaSDK] ❌ Failed to find top view controller\n");
}

}  // namespace
}  // namespace vorna
