// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/ServiceThread.h>

#include <vorna/platform/ProcessExit.h>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace vorna {

void lowerThreadPriority() noexcept {
    // On Linux a thread has a nice value of its own.
    constexpr int lowered = 10;
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), lowered);
}

/// Shared by the handle and the thread; the exit of the process finds it as long as one of them holds it.
class ServiceThread::State final : public RestsAtExit {
  public:
    void requestStop() noexcept override { stop_.request_stop(); }

    bool awaitRest(Time deadline) override {
        std::unique_lock lock(mutex_);
        return isCurrent() || changed_.wait_until(lock, deadline, [this] { return isResting_; });
    }

    bool awaitSafety(Time deadline) override {
        std::unique_lock lock(mutex_);
        return isCurrent() ||
               changed_.wait_until(lock, deadline, [this] { return isResting_ || vitalCount_ == 0; });
    }

    bool isCurrent() const noexcept { return id_.load() == std::this_thread::get_id(); }

    std::stop_token stopToken() const noexcept { return stop_.get_token(); }

    void sleepFor(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, stopToken(), time, [] { return false; });
    }

    void beginVital() noexcept {
        const std::scoped_lock lock(mutex_);
        ++vitalCount_;
    }

    void endVital() noexcept {
        {
            const std::scoped_lock lock(mutex_);
            --vitalCount_;
        }
        if (stop_.stop_requested()) {
            changed_.notify_all();
        }
    }

    /// On the thread, at its beginning and at its end.
    void begin() noexcept { id_.store(std::this_thread::get_id()); }

    void rest() noexcept {
        {
            const std::scoped_lock lock(mutex_);
            isResting_ = true;
        }
        changed_.notify_all();
    }

    std::thread thread;

  private:
    std::stop_source stop_;
    std::atomic<std::thread::id> id_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
    bool isResting_ = false;
    int vitalCount_ = 0;
};

std::stop_token ServiceThread::Self::stopToken() const noexcept {
    return state_.stopToken();
}

void ServiceThread::Self::sleepFor(std::chrono::milliseconds time) {
    state_.sleepFor(time);
}

void ServiceThread::Self::park() {
    state_.rest();
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

std::optional<ServiceThread> ServiceThread::start(const char* name, ThreadPriority priority, Loop loop) {
    if (processIsExiting()) {
        return std::nullopt;
    }
    auto state = std::make_shared<State>();
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    // A fault of our own is for the host's crash reporter to see.
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT}) {
        sigdelset(&all, fault);
    }
    // The new thread inherits the mask, so no other signal can slip in before it blocks them itself. SIGPIPE
    // is among them: a peer that closes early is an error code for us, not the end of the host.
    pthread_sigmask(SIG_SETMASK, &all, &before);
    bool isStarted = true;
    try {
        state->thread = std::thread([name, priority, state, loop = std::move(loop)]() mutable {
            pthread_setname_np(pthread_self(), name);
            if (priority == ThreadPriority::low) {
                lowerThreadPriority();
            }
            state->begin();
            Self self(*state);
            loop(self);
            // What the loop holds goes before the thread counts as resting.
            loop = nullptr;
            state->rest();
        });
    } catch (const std::system_error&) {
        isStarted = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (!isStarted) {
        return std::nullopt;
    }
    restAtProcessExit(state);
    return ServiceThread(std::move(state));
}

ServiceThread::ServiceThread(std::shared_ptr<State> state) noexcept : state_(std::move(state)) {}

ServiceThread::ServiceThread(ServiceThread&& other) noexcept = default;

ServiceThread& ServiceThread::operator=(ServiceThread&& other) noexcept {
    std::swap(state_, other.state_);
    return *this;
}

ServiceThread::~ServiceThread() {
    if (state_ && state_->thread.joinable()) {
        requestStop();
        state_->thread.detach();
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
    if (!state_->thread.joinable()) {
        return;
    }
    if (isCurrent() || processIsExiting()) {
        state_->thread.detach();
    } else {
        state_->thread.join();
    }
}

bool ServiceThread::isCurrent() const noexcept {
    return state_->isCurrent();
}

}  // namespace vorna
