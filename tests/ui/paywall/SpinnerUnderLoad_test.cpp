// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtCore/QThread>

#include <gmock/gmock.h>

#include <atomic>

namespace vorna {
namespace {

// The program runs with the threaded render loop.
TEST(SpinnerUnderLoad, TurnsOnWhileTheMainThreadIsBusy) {
    const support::RecordedEvents platform;
    std::atomic<int> frames = 0;
    std::atomic<bool> isElsewhere = false;
    support::ScreenHost host(QSize(390, 844));
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    ASSERT_TRUE(support::eventually([&] { return host.screens().size() == 1; }));
    host.settle();
    QThread* const mainThread = QThread::currentThread();
    QObject::connect(
        &host.quickWindow(), &QQuickWindow::afterRendering, &host.quickWindow(),
        [&] {
            ++frames;
            isElsewhere = QThread::currentThread() != mainThread;
        },
        Qt::DirectConnection);
    support::letTimePass(std::chrono::milliseconds(300));
    ASSERT_GT(frames, 5) << "it turns";
    ASSERT_TRUE(isElsewhere) << "frames are made on a thread of their own";
    frames = 0;
    QThread::msleep(1000);
    const int meanwhile = frames;
    RecordProperty("frames", meanwhile);
    std::printf("%d frames in the second\n", meanwhile);
    EXPECT_GE(meanwhile, 15);
}

}  // namespace
}  // namespace vorna
