// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/PaidDocument.h>
#include <tests/support/ui/PrintedLines.h>
#include <tests/support/ui/ScreenHost.h>

#include <vorna/ui/paywall/SpinningArc.h>

#include <QtCore/QEasingCurve>
#include <QtGui/QAccessible>
#include <QtGui/QPainter>

#include <gmock/gmock.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <thread>

namespace vorna {
namespace {

using std::chrono::milliseconds;
using support::eventually;
using support::letTimePass;
using support::PrintedLines;
using support::ScreenHost;
using testing::IsEmpty;

class Overlay : public testing::Test {
  protected:
    /// Shows one and waits for the end of its animation.
    void show() {
        const std::size_t before = host_->screens().size();
        VornaCoreSDK::ShowPaidProductLoadingScreen();
        ASSERT_TRUE(eventually([&] { return host_->screens().size() == before + 1; }));
        host_->settle();
    }

    void close() {
        const std::size_t before = host_->screens().size();
        VornaCoreSDK::ClosePaidProductLoadingScreen();
        ASSERT_TRUE(eventually([&] { return host_->screens().size() == before - 1; }));
        host_->settle();
    }

    void turn() {
        letTimePass(milliseconds(5));
        host_->settle();
    }

    const support::RecordedEvents platform_;
    std::unique_ptr<ScreenHost> host_ = std::make_unique<ScreenHost>(QSize(390, 844));
};

TEST_F(Overlay, IsShownAndClosedByTheHost) {
    PrintedLines printed;
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    EXPECT_THAT(host_->screens(), IsEmpty()) << "the call returns immediately";
    ASSERT_TRUE(eventually([&] { return host_->screens().size() == 1; }));
    EXPECT_TRUE(host_->window().isMoving());
    host_->settle();
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    ASSERT_TRUE(eventually([&] { return host_->screens().empty(); }));
    EXPECT_TRUE(host_->window().isMoving());
    host_->settle();
    EXPECT_THAT(printed.take(), IsEmpty());
    EXPECT_THAT(host_->notifications(), IsEmpty());
}

TEST_F(Overlay, IsNotShownTwice) {
    show();
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    turn();
    EXPECT_EQ(host_->screens().size(), 1U);
    close();
    EXPECT_THAT(host_->screens(), IsEmpty());
    show();
    EXPECT_EQ(host_->screens().size(), 1U);
}

TEST_F(Overlay, IsShownTwiceForTwoCallsInQuickSuccession) {
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    ASSERT_TRUE(eventually([&] { return host_->screens().size() == 2; }));
    host_->settle();
    const std::shared_ptr<ui::ViewController> lower = host_->screens().front();
    close();
    EXPECT_THAT(host_->screens(), testing::ElementsAre(lower));
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    turn();
    EXPECT_THAT(host_->screens(), testing::ElementsAre(lower)) << "no longer referred to";
}

TEST_F(Overlay, CannotBeClosedBeforeItsAnimationEnds) {
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    turn();
    EXPECT_EQ(host_->screens().size(), 1U);
    close();
    EXPECT_THAT(host_->screens(), IsEmpty());
}

TEST_F(Overlay, CanBeShownAgainAfterTwoCloseCalls) {
    show();
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    turn();
    EXPECT_THAT(host_->screens(), IsEmpty());
    show();
    EXPECT_EQ(host_->screens().size(), 1U);
}

TEST_F(Overlay, IsNotShownWhileAnotherIsDismissed) {
    show();
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    ASSERT_TRUE(eventually([&] { return host_->screens().empty(); }));
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    turn();
    EXPECT_THAT(host_->screens(), IsEmpty());
}

TEST_F(Overlay, PrintsNothingIfThereIsNoneToClose) {
    PrintedLines printed;
    VornaCoreSDK::ClosePaidProductLoadingScreen();
    letTimePass(milliseconds(20));
    EXPECT_THAT(printed.take(), IsEmpty());
}

TEST_F(Overlay, PrintsNothingIfThereIsNoWindow) {
    host_->close();
    PrintedLines printed;
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    letTimePass(milliseconds(20));
    EXPECT_THAT(printed.take(), IsEmpty());
}

TEST_F(Overlay, CanBeShownAndClosedFromAnyThread) {
    std::thread([] { VornaCoreSDK::ShowPaidProductLoadingScreen(); }).join();
    ASSERT_TRUE(eventually([&] { return host_->screens().size() == 1; }));
    host_->settle();
    std::thread([] { VornaCoreSDK::ClosePaidProductLoadingScreen(); }).join();
    ASSERT_TRUE(eventually([&] { return host_->screens().empty(); }));
}

TEST_F(Overlay, CanBeShownInAnotherWindowAfterItsOwnIsGone) {
    show();
    host_->close();
    host_ = std::make_unique<ScreenHost>(QSize(390, 844));
    show();
    EXPECT_EQ(host_->screens().size(), 1U);
    close();
    EXPECT_THAT(host_->screens(), IsEmpty());
}

TEST_F(Overlay, BlocksTapsAndKeysToTheScreenBelow) {
    VornaCoreSDK::ShowPaywall(support::paywallText());
    ASSERT_TRUE(eventually([&] { return host_->screens().size() == 1; }));
    host_->settle();
    QQuickItem* const button = host_->find("actionButton");
    QQuickItem* const cell = host_->find("productCell");
    show();
    EXPECT_TRUE(button->isVisible()) << "the overlay is translucent";
    host_->click(button);
    host_->touch(button);
    host_->click(cell);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Tab, Qt::Key_Space, Qt::Key_Return}) {
        host_->press(key);
    }
    EXPECT_THAT(host_->notifications(), IsEmpty());

    close();
    EXPECT_TRUE(button->hasActiveFocus()) << "restored";
    host_->click(button);
    host_->press(Qt::Key_Return);
    EXPECT_EQ(host_->notifications().size(), 2U);
}

TEST_F(Overlay, TellsAssistiveTechnologyThatItIsLoading) {
    QAccessible::setActive(true);
    show();
    QAccessibleInterface* const overlay = QAccessible::queryAccessibleInterface(host_->topView());
    ASSERT_NE(overlay, nullptr);
    EXPECT_EQ(overlay->role(), QAccessible::Dialog);
    EXPECT_EQ(overlay->text(QAccessible::Name), QStringLiteral("Loading"));
    QAccessibleInterface* const arc = QAccessible::queryAccessibleInterface(host_->find("spinner"));
    ASSERT_NE(arc, nullptr);
    EXPECT_EQ(arc->role(), QAccessible::ProgressBar);
}

TEST_F(Overlay, DimsTheScreenBelow) {
    const QPoint corner(5, 5);
    const QColor before = host_->picture().pixelColor(corner);
    show();
    const QColor dimmed = host_->picture().pixelColor(corner);
    EXPECT_NEAR(dimmed.red(), before.red() * 0.6, 1.5);
    EXPECT_NEAR(dimmed.green(), before.green() * 0.6, 1.5);
    EXPECT_NEAR(dimmed.blue(), before.blue() * 0.6, 1.5);
}

TEST_F(Overlay, FollowsTheWindowsSizeAndLeavesTheSpinnerInPlace) {
    show();
    const QRectF arc = ScreenHost::geometry(host_->find("spinner"));
    EXPECT_EQ(arc.size(), QSizeF(60, 60));
    EXPECT_EQ(arc.center(), QPointF(195, 422));
    host_->quickWindow().resize(700, 500);
    ASSERT_TRUE(eventually([&] { return host_->topView()->width() == 700; }));
    host_->settle();
    EXPECT_EQ(ScreenHost::geometry(host_->topView()), QRectF(0, 0, 700, 500));
    EXPECT_EQ(ScreenHost::geometry(host_->find("spinner")), arc);
}

TEST_F(Overlay, HasASpinnerThatTurnsOncePerSecond) {
    show();
    QQuickItem* const arc = host_->find("spinnerLayer");
    ASSERT_NE(arc, nullptr);
    EXPECT_EQ(arc->size(), QSizeF(60, 60));
    EXPECT_EQ(arc->property("radius").toDouble(), 27.5);
    EXPECT_TRUE(arc->parentItem()->property("isRotating").toBool());
    EXPECT_EQ(arc->transformOrigin(), QQuickItem::Center);
    const auto* const rotation = arc->parentItem()->findChild<const QObject*>(QStringLiteral("rotation"));
    ASSERT_NE(rotation, nullptr);
    EXPECT_EQ(rotation->property("duration").toInt(), 1000);
    EXPECT_EQ(rotation->property("to").toDouble() - rotation->property("from").toDouble(), 360);
    EXPECT_EQ(rotation->property("loops").toInt(), -1) << "without end";
    EXPECT_EQ(rotation->property("easing").value<QEasingCurve>().type(), QEasingCurve::Linear);

    // The arc is open between nine and twelve o'clock; the centre of that gap gives the rotation.
    const auto turned = [&] {
        const QImage picture = host_->picture();
        double x = 0;
        double y = 0;
        for (int degree = 0; degree < 360; ++degree) {
            const double angle = degree * std::numbers::pi / 180;
            const QPoint place(static_cast<int>(std::lround(195 + 27.5 * std::cos(angle) - 0.5)),
                               static_cast<int>(std::lround(422 + 27.5 * std::sin(angle) - 0.5)));
            if (picture.pixelColor(place).red() < 150) {
                x += std::cos(angle);
                y += std::sin(angle);
            }
        }
        return std::atan2(y, x) * 180 / std::numbers::pi;
    };
    const double first = turned();
    std::vector<double> angles{first};
    for (int sample = 0; sample < 8; ++sample) {
        letTimePass(milliseconds(90));
        angles.push_back(turned());
    }
    // Each sample is further on clockwise, by less than half a turn.
    for (std::size_t index = 1; index < angles.size(); ++index) {
        const double step = std::remainder(angles[index] - angles[index - 1], 360);
        EXPECT_GT(step, 5) << "sample " << index;
    }
}

/// Returns the arc painted alone.
QImage paintedArc(QSize size, double lineWidth, const QColor& color) {
    ui::SpinningArc arc;
    arc.setSize(size);
    arc.setProperty("lineWidth", lineWidth);
    arc.setProperty("color", color);
    QImage picture(size, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    arc.paint(&painter);
    return picture;
}

TEST(SpinningArc, RunsClockwiseFromTwelveToNine) {
    const QImage picture = paintedArc({60, 60}, 5, Qt::white);
    const auto opacityAt = [&](double clock, double radius) {
        const double angle = clock * std::numbers::pi / 6;
        return picture
            .pixelColor(static_cast<int>(30 + radius * std::sin(angle)),
                        static_cast<int>(30 - radius * std::cos(angle)))
            .alpha();
    };
    for (const double clock : {0.3, 1.5, 3.0, 4.5, 6.0, 7.5, 8.7}) {
        EXPECT_EQ(opacityAt(clock, 27.5), 255) << clock << " o'clock";
        EXPECT_EQ(opacityAt(clock, 23), 0) << clock << " o'clock, inside the line";
    }
    for (const double clock : {9.6, 10.5, 11.4}) {
        EXPECT_EQ(opacityAt(clock, 27.5), 0) << clock << " o'clock";
    }
    // The rounded ends extend by half the line width.
    EXPECT_GT(opacityAt(11.9, 27.5), 200);
    EXPECT_GT(opacityAt(9.1, 27.5), 200);
    EXPECT_EQ(picture.pixelColor(30, 30).alpha(), 0) << "not filled";
}

TEST(SpinningArc, FitsTheShorterSide) {
    ui::SpinningArc arc;
    arc.setSize({100, 60});
    EXPECT_EQ(arc.radius(), 27.5);
    arc.setSize({40, 60});
    EXPECT_EQ(arc.radius(), 17.5);
    arc.setSize({3, 3});
    EXPECT_EQ(arc.radius(), 0);
}

}  // namespace
}  // namespace vorna
