// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/ApplicationSignals.h>

#include <tests/support/ui/ScreenHost.h>

#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/MemoryPressure.h>

#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace vorna::ui {
namespace {

using support::eventually;
using support::letTimePass;
using support::ScreenHost;
using testing::ElementsAre;
using testing::IsEmpty;

/// Records the notifications of the application's lifecycle, by short names.
class Life {
  public:
    Life() {
        observe(UIApplicationDidFinishLaunchingNotification, "launched");
        observe(UIApplicationDidBecomeActiveNotification, "active");
        observe(UIApplicationWillResignActiveNotification, "resigns");
        observe(UIApplicationDidEnterBackgroundNotification, "background");
        observe(UIApplicationWillEnterForegroundNotification, "foreground");
        observe(UIApplicationDidReceiveMemoryWarningNotification, "memory");
    }

    std::vector<std::string> take() { return std::exchange(seen_, {}); }

    const std::vector<std::string>& seen() const { return seen_; }

  private:
    void observe(std::string_view name, std::string shortName) {
        observations_.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [this, shortName](const Notification&) { seen_.push_back(shortName); }));
    }

    std::vector<std::string> seen_;
    std::vector<NotificationCenter::Observation> observations_;
};

class ApplicationSignals : public testing::Test {
  protected:
    /// As a window system would report it; the one used in tests never hides applications.
    static void become(Qt::ApplicationState state) { Q_EMIT qGuiApp->applicationStateChanged(state); }

    Life life;
    ScreenHost host;
};

TEST_F(ApplicationSignals, BeginWithLaunchedAndActiveOnce) {
    EXPECT_TRUE(eventually([&] { return life.seen().size() == 2; }));
    const ScreenHost another;
    letTimePass(std::chrono::milliseconds(100));
    EXPECT_THAT(life.take(), ElementsAre("launched", "active"));
}

TEST_F(ApplicationSignals, FollowTheWayToTheBackgroundAndBack) {
    EXPECT_TRUE(eventually([&] { return life.seen().size() == 2; }));
    life.take();
    become(Qt::ApplicationInactive);
    EXPECT_THAT(life.take(), ElementsAre("resigns"));
    become(Qt::ApplicationHidden);
    EXPECT_THAT(life.take(), ElementsAre("background"));
    become(Qt::ApplicationSuspended);
    EXPECT_THAT(life.take(), IsEmpty());
    become(Qt::ApplicationInactive);
    EXPECT_THAT(life.take(), ElementsAre("foreground"));
    become(Qt::ApplicationActive);
    EXPECT_THAT(life.take(), ElementsAre("active"));
}

TEST_F(ApplicationSignals, KeepTheirOrderIfStatesAreSkipped) {
    EXPECT_TRUE(eventually([&] { return life.seen().size() == 2; }));
    life.take();
    become(Qt::ApplicationSuspended);
    EXPECT_THAT(life.take(), ElementsAre("resigns", "background"));
    become(Qt::ApplicationActive);
    EXPECT_THAT(life.take(), ElementsAre("foreground", "active"));
}

TEST_F(ApplicationSignals, FollowTheRealFocus) {
    EXPECT_TRUE(eventually([&] { return life.seen().size() == 2; }));
    life.take();
    host.quickWindow().hide();
    EXPECT_TRUE(eventually([&] { return !life.seen().empty(); }));
    EXPECT_EQ(life.take().front(), "resigns");
    host.quickWindow().show();
    host.quickWindow().requestActivate();
    EXPECT_TRUE(eventually([&] { return !life.seen().empty() && life.seen().back() == "active"; }));
}

TEST_F(ApplicationSignals, ResignOnceWhenAnActiveApplicationQuits) {
    EXPECT_TRUE(eventually([&] { return life.seen().size() == 2; }));
    life.take();
    QTimer::singleShot(0, qGuiApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    EXPECT_THAT(life.take(), ElementsAre("resigns"));
    become(Qt::ApplicationInactive);
    EXPECT_THAT(life.take(), IsEmpty());
}

TEST_F(ApplicationSignals, DoNotResignAgainWhenAnInactiveApplicationQuits) {
    EXPECT_TRUE(eventually([&] { return life.seen().size() == 2; }));
    become(Qt::ApplicationInactive);
    life.take();
    QTimer::singleShot(0, qGuiApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    EXPECT_THAT(life.take(), IsEmpty());
}

TEST(ApplicationSignalsInTheFirstTurn, WaitForTheHostToInitialise) {
    Life life;
    ui::ApplicationSignals signals;
    signals.deliver();
    signals.deliver();
    EXPECT_THAT(life.seen(), IsEmpty());
    EXPECT_TRUE(eventually([&] { return !life.seen().empty(); }));
    letTimePass(std::chrono::milliseconds(50));
    EXPECT_THAT(life.take(), ElementsAre("launched")) << "no window could be active";
}

TEST(MemoryPressure, IsSilentWithoutKernelSupport) {
    int warnings = 0;
    const MemoryPressure absent([&] { ++warnings; }, "/proc/there/is/none");
    const MemoryPressure refused([&] { ++warnings; }, "/proc/version");
    letTimePass(std::chrono::milliseconds(50));
    EXPECT_EQ(warnings, 0);
}

}  // namespace
}  // namespace vorna::ui
