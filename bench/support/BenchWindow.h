// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A window with the library attached that records the time of each frame.

#include <bench/support/Stopwatch.h>

#include <vorna/ui/attach.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtQuick/QQuickWindow>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <vector>

namespace vorna::bench {

class BenchWindow {
  public:
    BenchWindow() {
        quickWindow_.resize(390, 844);
        attached_ = &ui::attach(quickWindow_);
        QObject::connect(&quickWindow_, &QQuickWindow::frameSwapped, &quickWindow_,
                         [this] { frames_.push_back(nanosecondsNow()); });
        quickWindow_.show();
        until([this] { return !frames_.empty(); });
        wait(300'000'000);
    }

    ui::Window& window() { return *attached_; }

    std::size_t screens() const { return attached_->presentedViewControllers().size(); }

    /// The time at which each frame was shown, oldest first.
    const std::vector<std::int64_t>& frames() const { return frames_; }

    /// Runs the event loop until the condition holds. Throws if it does not within 20 seconds.
    static void until(const std::function<bool()>& condition) {
        const std::int64_t latest = nanosecondsNow() + 20'000'000'000;
        while (!condition()) {
            if (nanosecondsNow() > latest) {
                throw std::runtime_error("timed out waiting for the window");
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        }
    }

    /// Runs the event loop for that many nanoseconds.
    static void wait(std::int64_t nanoseconds) {
        const std::int64_t end = nanosecondsNow() + nanoseconds;
        while (nanosecondsNow() < end) {
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
        }
    }

    /// Waits for the next frame and returns its time.
    std::int64_t nextFrame() {
        const std::size_t before = frames_.size();
        quickWindow_.update();
        until([&] { return frames_.size() > before; });
        return frames_[before];
    }

  private:
    QQuickWindow quickWindow_;
    ui::Window* attached_ = nullptr;
    std::vector<std::int64_t> frames_;
};

}  // namespace vorna::bench
