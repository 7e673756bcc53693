// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/MainQueue.h>

#include <vorna/base/CatchAll.h>
#include <vorna/platform/Log.h>
#include <vorna/ui/common/ScreensRuntime.h>
#include <vorna/ui/common/WorkQueue.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <utility>

namespace vorna::ui {

namespace {

void run(const std::function<void()>& work) {
    catchAll(work, [] { log::failure({"A screen operation"}); });
}

QThread* mainThread() {
    const QCoreApplication* const application = QCoreApplication::instance();
    return application == nullptr ? nullptr : application->thread();
}

/// Runs one piece of work for each event.
class Receiver final : public QObject {
  public:
    Receiver() { moveToThread(mainThread()); }

    void post(std::function<void()> work) {
        waiting_.add(std::move(work));
        QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release());
    }

    bool event(QEvent* event) override {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        run([this] { waiting_.runFirst(); });
        return true;
    }

  private:
    WorkQueue waiting_;
};

}  // namespace

bool mainQueue::isCurrent() {
    return QThread::currentThread() == mainThread();
}

void mainQueue::async(std::function<void()> work) {
    if (mainThread() == nullptr) {
        return;
    }
    ScreensRuntime::part<Receiver>().post(std::move(work));
}

/// Waits in steps that fit a QTimer.
class DelayedTask::Timer {
  public:
    Timer(std::int64_t seconds, std::function<void()> work) : work_(std::move(work)) {
        constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max() / 1'000'000'000;
        const std::int64_t wait = std::clamp<std::int64_t>(seconds, 0, longest);
        // A deadline beyond the range of the clock never comes.
        if (wait < longest / 2) {
            deadline_ = QDeadlineTimer(std::chrono::seconds(wait), Qt::PreciseTimer);
        }
        timer_.setSingleShot(true);
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { step(); });
        start();
    }

  private:
    void start() {
        constexpr std::int64_t longestStep = std::int64_t{24} * 60 * 60 * 1000;
        const std::int64_t left = deadline_.isForever() ? longestStep : deadline_.remainingTime();
        timer_.start(static_cast<int>(std::min(left, longestStep)));
    }

    void step() {
        if (!deadline_.hasExpired()) {
            start();
            return;
        }
        // The work may destroy this task.
        const std::function<void()> work = std::move(work_);
        run(work);
    }

    std::function<void()> work_;
    QDeadlineTimer deadline_{QDeadlineTimer::Forever};
    QTimer timer_;
};

DelayedTask::DelayedTask() noexcept = default;

DelayedTask::DelayedTask(std::int64_t seconds, std::function<void()> work)
    : timer_(std::make_unique<Timer>(seconds, std::move(work))) {}

DelayedTask::DelayedTask(DelayedTask&&) noexcept = default;
DelayedTask& DelayedTask::operator=(DelayedTask&&) noexcept = default;
DelayedTask::~DelayedTask() = default;

}  // namespace vorna::ui
