// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/ServiceThread.h>

#include <vorna/base/CatchAll.h>
#include <vorna/platform/Fork.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/ProcessExit.h>
#include <vorna/platform/Upkeep.h>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

namespace vorna {

namespace {

/// Blocks all signals except faults on this thread, and so on the threads that it starts, during its scope.
/// SIGPIPE is blocked too: a peer that closes early should be an error code, not the end of the host.
class BlockedSignals {
  public:
    BlockedSignals() noexcept {
        sigset_t blocked;
        sigfillset(&blocked);
        // Our faults are for the host's crash reporter, refused system calls for its sandbox.
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
            sigdelset(&blocked, fault);
        }
        pthread_sigmask(SIG_SETMASK, &blocked, &before_);
    }

    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    BlockedSignals(BlockedSignals&&) = delete;
    BlockedSignals& operator=(BlockedSignals&&) = delete;

    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_{};
};

}  // namespace

void lowerThreadPriority() noexcept {
    // On Linux each thread has its own nice value; 0 means the calling thread. A host that already runs at a
    // lower priority is not raised.
    constexpr int lowered = 10;
    if (getpriority(PRIO_PROCESS, 0) < lowered) {
        setpriority(PRIO_PROCESS, 0, lowered);
    }
}

/// Shared by the handle and the thread; process exit finds it while either holds it.
class ServiceThread::State final : public RestsAtExit {
  public:
    explicit State(std::chrono::milliseconds exitGrace)
        : exitGrace_(std::clamp<std::chrono::milliseconds>(exitGrace, std::chrono::milliseconds(0),
                                                           std::chrono::hours(24))) {}

    State(const State&) = delete;
    State& operator=(const State&) = delete;
    State(State&&) = delete;
    State& operator=(State&&) = delete;

    ~State() override {
        // Without a handle, the thread itself is the last owner.
        if (isHere() && thread_->joinable()) {
            thread_->detach();
        }
    }

    /// False in the child of a fork: the thread is the parent's, and only its memory has been copied.
    bool isHere() const noexcept { return generation_ == forkGeneration(); }

    void requestStop() noexcept override {
        if (isHere()) {
            stop_.request_stop();
        }
    }

    std::chrono::milliseconds exitGrace() const noexcept override { return exitGrace_; }

    Time endOfGrace() const noexcept { return processIsExiting() ? timeOfExit() + exitGrace_ : Time::max(); }

    bool mayGoOn() const noexcept {
        if (!processIsExiting()) {
            return isHere();
        }
        return isHere() && !exitHasMovedOn() && std::chrono::steady_clock::now() < endOfGrace();
    }

    bool awaitRest(Time deadline) override {
        if (!isHere()) {
            return true;
        }
        std::unique_lock lock(mutex_);
        return isCurrent() || changed_.wait_until(lock, deadline, [this] { return isResting_; });
    }

    bool awaitSafety(Time deadline) override {
        if (!isHere() || isCurrent()) {
            return true;
        }
        std::unique_lock lock(mutex_);
        const bool isSafe =
            changed_.wait_until(lock, deadline, [this] { return isResting_ || vitalCount_ == 0; });
        if (hasReturned_) {
            // The thread may still be destroying its thread-local objects, such as those of TLS libraries.
            lock.unlock();
            join();
        }
        return isSafe;
    }

    void adopt(std::thread thread) {
        const std::scoped_lock lock(mutex_);
        *thread_ = std::move(thread);
    }

    /// Not on the thread itself.
    void join() {
        std::thread thread;
        {
            const std::scoped_lock lock(mutex_);
            thread.swap(*thread_);
        }
        if (thread.joinable()) {
            thread.join();
        }
    }

    bool isCurrent() const noexcept { return isHere() && id_.load() == std::this_thread::get_id(); }

    bool hasEnded() {
        if (!isHere()) {
            return true;
        }
        const std::scoped_lock lock(mutex_);
        return hasReturned_;
    }

    std::stop_token stopToken() const noexcept { return stop_.get_token(); }

    void sleepFor(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, stopToken(), time, [] { return false; });
    }

    void beginVital() noexcept {
        if (vitalDepth_++ == 0) {
            outsideVital_.lock();
        }
        const std::scoped_lock lock(mutex_);
        ++vitalCount_;
    }

    void endVital() noexcept {
        {
            const std::scoped_lock lock(mutex_);
            --vitalCount_;
        }
        if (--vitalDepth_ == 0) {
            outsideVital_.unlock();
        }
        // Only process exit waits for this, after its request to stop.
        if (stop_.stop_requested()) {
            changed_.notify_all();
        }
    }

    /// All that the thread does.
    void run(Loop loop) {
        id_.store(std::this_thread::get_id());
        // Before the thread counts as resting, the loop's captures are destroyed. Host code may also end the
        // thread with pthread_exit, which unwinds it.
        Rest rest(*this, loop);
        Self self(*this);
        catchAll([&] { loop(self); }, [] { log::failure({"A background thread"}); });
        rest.loopHasReturned();
    }

    /// Called on the thread, when it parks or after the loop.
    void rest(bool hasReturned) noexcept {
        {
            const std::scoped_lock lock(mutex_);
            isResting_ = true;
            hasReturned_ = hasReturned;
        }
        changed_.notify_all();
    }

  private:
    class Rest {
      public:
        Rest(State& state, Loop& loop) noexcept : state_(state), loop_(loop) {}

        Rest(const Rest&) = delete;
        Rest& operator=(const Rest&) = delete;
        Rest(Rest&&) = delete;
        Rest& operator=(Rest&&) = delete;

        ~Rest() {
            loop_ = nullptr;
            state_.rest(true);
            if (!hasReturned_) {
                upkeep::request();
            }
        }

        void loopHasReturned() noexcept { hasReturned_ = true; }

      private:
        State& state_;
        Loop& loop_;
        bool hasReturned_ = false;
    };

    const unsigned generation_ = forkGeneration();
    const std::chrono::milliseconds exitGrace_;
    std::stop_source stop_;
    std::atomic<std::thread::id> id_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
    /// A parent's can be neither joined nor destroyed.
    NeverDestroyed<std::thread> thread_;
    bool isResting_ = false;
    bool hasReturned_ = false;
    int vitalCount_ = 0;
    /// The thread's own count. A fork waits for vital work too: the locks of other libraries, held in the
    /// middle of it, would stay locked in the child.
    int vitalDepth_ = 0;
    Mutex outsideVital_;
};

std::stop_token ServiceThread::Self::stopToken() const noexcept {
    return state_.stopToken();
}

bool ServiceThread::Self::stopRequested() const noexcept {
    return !state_.isHere() || stopToken().stop_requested();
}

bool ServiceThread::Self::mayGoOn() const noexcept {
    return state_.mayGoOn();
}

ServiceThread::Time ServiceThread::Self::endOfGrace() const noexcept {
    return state_.endOfGrace();
}

void ServiceThread::Self::sleepFor(std::chrono::milliseconds time) {
    state_.sleepFor(time);
}

void ServiceThread::Self::park() {
    if (!state_.isHere()) {
        // Host code forked on this thread and came back: what the thread works on is the parent's.
        pthread_exit(nullptr);
    }
    state_.rest(false);
    for (;;) {
        pause();
    }
}

ServiceThread::Self::Vital::Vital(Self& self) noexcept : state_(self.state_) {
    state_.beginVital();
}

ServiceThread::Self::Vital::~Vital() {
    state_.endVital();
}

std::optional<ServiceThread> ServiceThread::start(const char* name, ThreadPriority priority, Loop loop,
                                                  std::chrono::milliseconds exitGrace) {
    if (processIsExiting()) {
        return std::nullopt;
    }
    try {
        const auto state = std::make_shared<State>(exitGrace);
        // Before the thread exists, so that an exit that begins now either finds it or is seen here. Stopping
        // it from here instead would run its stop callbacks under the caller's locks.
        restAtProcessExit(state);
        if (processIsExiting()) {
            return std::nullopt;
        }
        // In effect from the thread's first instruction, since it inherits the mask.
        const BlockedSignals blocked;
        state->adopt(std::thread([name, priority, state, loop = std::move(loop)]() mutable {
            // A cancellation would strike in the middle of another library.
            pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
            pthread_setname_np(pthread_self(), name);
            if (priority == ThreadPriority::low) {
                lowerThreadPriority();
            }
            state->run(std::move(loop));
        }));
        return ServiceThread(state);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

ServiceThread::ServiceThread(std::shared_ptr<State> state) noexcept : state_(std::move(state)) {}

ServiceThread& ServiceThread::operator=(ServiceThread&& other) noexcept {
    const ServiceThread released(std::exchange(state_, std::move(other.state_)));
    return *this;
}

ServiceThread::~ServiceThread() {
    if (state_) {
        requestStop();
    }
}

void ServiceThread::requestStop() noexcept {
    state_->requestStop();
}

bool ServiceThread::awaitRest(Time deadline) {
    return state_->awaitRest(deadline);
}

void ServiceThread::join() {
    requestStop();
    if (state_->isHere() && !isCurrent() && !processIsExiting()) {
        state_->join();
    }
}

bool ServiceThread::isCurrent() const noexcept {
    return state_->isCurrent();
}

bool ServiceThread::hasEnded() const {
    return state_->hasEnded();
}

}  // namespace vorna
