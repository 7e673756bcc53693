// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/SystemWatch.h>

#include <vorna/platform/BackgroundThread.h>
#include <vorna/platform/FileDescriptor.h>
#include <vorna/platform/ProcessExit.h>
#include <vorna/platform/linux/Display.h>
#include <vorna/platform/linux/KernelEvents.h>
#include <vorna/platform/linux/PowerSupply.h>
#include <vorna/platform/linux/TimeZoneWatch.h>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

namespace vorna {

namespace {

using Clock = std::chrono::steady_clock;

/// Some drivers announce a change every time they are read; so announcements do not cause readings more often
/// than this.
constexpr std::chrono::milliseconds breath{1000};

void lowerPriority() noexcept {
    constexpr int lowered = 10;
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), lowered);
}

int millisecondsUntil(Clock::time_point moment) noexcept {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(moment - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, 3'600'000));
}

}  // namespace

/// Shared by the object and its thread, so that either may go first.
struct SystemWatch::State {
    State(std::shared_ptr<FactsBoard> itsBoard, SystemWatchSources itsSources)
        : board(std::move(itsBoard)),
          sources(std::move(itsSources)) {}

    const std::shared_ptr<FactsBoard> board;
    const SystemWatchSources sources;
    const FileDescriptor wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::stop_source fingerprintsStop;
    TimeZoneWatch timeZone;

    std::atomic<bool> isStopping = false;
    std::atomic<bool> isBatteryWatched = false;

    std::mutex mutex;
    std::condition_variable hasEnded;
    std::thread thread;
    /// While it runs.
    std::optional<std::thread::id> runningThread;

    bool mustStop() const noexcept { return isStopping.load() || processIsExiting(); }

    void signal() const noexcept { eventfd_write(wake.number(), 1); }

    void stop() noexcept {
        isStopping.store(true);
        fingerprintsStop.request_stop();
        signal();
    }

    /// Waits for the thread, at most until the deadline if there is one; then leaves it alone.
    void awaitRest(std::optional<Clock::time_point> deadline) {
        std::unique_lock lock(mutex);
        const auto isAtRest = [&] { return !runningThread; };
        if (runningThread != std::this_thread::get_id()) {
            if (deadline) {
                hasEnded.wait_until(lock, *deadline, isAtRest);
            } else {
                hasEnded.wait(lock, isAtRest);
            }
        }
        if (thread.joinable()) {
            isAtRest() ? thread.join() : thread.detach();
        }
    }
};

SystemWatch::SystemWatch(std::shared_ptr<FactsBoard> board, SystemWatchSources sources)
    : state_(std::make_shared<State>(std::move(board), std::move(sources))) {
    if (!state_->wake.isOpen() || processIsExiting()) {
        return;
    }
    // Held while the thread starts, so that it is known before it can end.
    const std::scoped_lock lock(state_->mutex);
    std::optional<std::thread> started =
        startBackgroundThread("vorna-system", ThreadPriority::normal, [state = state_] {
            run(*state);
            const std::scoped_lock ending(state->mutex);
            state->runningThread.reset();
            state->hasEnded.notify_all();
        });
    if (!started) {
        return;
    }
    state_->thread = std::move(*started);
    state_->runningThread = state_->thread.get_id();
    stopAtProcessExit([weak = std::weak_ptr(state_)](Clock::time_point deadline) {
        if (const std::shared_ptr<State> state = weak.lock()) {
            state->stop();
            state->awaitRest(deadline);
        }
    });
}

SystemWatch::~SystemWatch() {
    state_->stop();
    // When the process exits, the time to wait has been spent before.
    state_->awaitRest(processIsExiting() ? std::optional(Clock::now()) : std::nullopt);
}

void SystemWatch::watchBattery() noexcept {
    if (!state_->isBatteryWatched.exchange(true)) {
        state_->signal();
    }
}

void SystemWatch::run(State& state) noexcept {
    try {
        const std::string& root = state.sources.root;
        const auto look = [&] {
            if (const auto screen = mainDisplay(readDisplayConnectors(root))) {
                state.board->detectScreen(*screen);
            }
            state.board->setBattery(combined(readBatteries(root)));
        };
        // The battery is looked at before anybody has asked, so that the first record can tell its level.
        look();
        if (!state.mustStop() && state.sources.isFingerEnrolled) {
            state.board->setBiometricSupported(state.sources.isFingerEnrolled(
                state.sources.systemBusAddress, state.fingerprintsStop.get_token()));
        }
        // Only now: GLib's own thread, which the host may share with us, has inherited the usual priority.
        lowerPriority();

        KernelEvents events;
        bool isListening = false;
        Clock::time_point looked = Clock::now();
        Clock::time_point due = looked + state.sources.interval;
        while (!state.mustStop()) {
            std::array<pollfd, 2> sources = {pollfd{state.wake.number(), POLLIN, 0},
                                             pollfd{events.descriptor(), POLLIN, 0}};
            poll(sources.data(), sources.size(), millisecondsUntil(due));
            eventfd_t count = 0;
            eventfd_read(state.wake.number(), &count);
            const bool isWatched = state.isBatteryWatched.load();
            if (isWatched && !isListening) {
                isListening = true;
                events.open();
                due = Clock::now();
            }
            if (events.takePowerSupplyChange()) {
                due = std::min(due, looked + std::min(breath, state.sources.interval));
            }
            if (Clock::now() < due) {
                continue;
            }
            state.timeZone.update();
            if (isWatched) {
                look();
            }
            looked = Clock::now();
            due = looked + state.sources.interval;
        }
    } catch (const std::exception&) {
        // Out of memory: what is known stays as it is.
    }
}

}  // namespace vorna
