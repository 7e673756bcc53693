// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtCore/QThread>

#include <gmock/gmock.h>

#include <atomic>

namespace vorna {
namespace {

// Needs the threaded render loop.
TEST(SpinnerUnderLoad, KeepsTurningWhileTheMainThreadIsBusy) {
    const support::RecordedEvents platform;
    std::atomic<int> frames = 0;
    std::atomic<bool> isOffMainThread = false;
    support::ScreenHost host(QSize(390, 844));
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    ASSERT_TRUE(support::eventually([&] { return host.screens().size() == 1; }));
    host.settle();
    QThread* const mainThread = QThread::currentThread();
    QObject::connect(
        &host.quickWindow(), &QQuickWindow::afterRendering, &host.quickWindow(),
        [&] {
            ++frames;
            isOffMainThread = QThread::currentThread() != mainThread;
        },
        Qt::DirectConnection);
    support::letTimePass(std::chrono::milliseconds(300));
    ASSERT_GT(frames, 5) << "it turns";
    ASSERT_TRUE(isOffMainThread) << "frames are rendered on their own thread";
    frames = 0;
    QThread::msleep(1000);
    const int framesWhileBusy = frames;
    RecordProperty("frames", framesWhileBusy);
    std::printf("%d frames in one second\n", framesWhileBusy);
    EXPECT_GE(framesWhileBusy, 15);
}

}  // namespace
}  // namespace vorna
