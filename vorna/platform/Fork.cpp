// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Fork.h>

#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/NoCancellation.h>

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <mutex>
#include <thread>
#include <vector>

namespace vorna {

namespace {

constinit std::atomic<unsigned> generation = 0;

}  // namespace

constinit std::atomic<bool> isForkWaiting = false;

void giveWayNow() noexcept {
    // A thread may hold one lock and take another, and the fork waits for the first.
    constexpr std::chrono::milliseconds longest(5);
    constexpr std::chrono::microseconds pause(50);
    const NoCancellation whileSleeping;
    const auto end = std::chrono::steady_clock::now() + longest;
    while (isForkWaiting.load(std::memory_order_relaxed) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(pause);
    }
}

unsigned forkGeneration() noexcept {
    return generation.load(std::memory_order_relaxed);
}

/// All registered locks. Its own mutex is held during a fork, so that the list does not change.
class ForkRegistry {
  public:
    static ForkRegistry& shared() {
        static NeverDestroyed<ForkRegistry> registry;
        return *registry;
    }

    ForkRegistry() {
        pthread_atfork([] { shared().prepare(); }, [] { shared().continueInParent(); },
                       [] { shared().continueInChild(); });
    }

    void add(ForkRegistration& entry) {
        const std::scoped_lock lock(mutex_);
        entry.next_ = first_;
        if (first_ != nullptr) {
            first_->previous_ = &entry;
        }
        first_ = &entry;
    }

    void remove(ForkRegistration& entry) {
        const std::scoped_lock lock(mutex_);
        (entry.previous_ == nullptr ? first_ : entry.previous_->next_) = entry.next_;
        if (entry.next_ != nullptr) {
            entry.next_->previous_ = entry.previous_;
        }
    }

    void add(void (*function)()) {
        const std::scoped_lock lock(mutex_);
        functions_.push_back(function);
    }

  private:
    using Clock = std::chrono::steady_clock;

    /// Threads take these locks in orders of their own. So a lock that is not free soon is not waited for
    /// with the others held: all are released, and the fork begins again.
    static constexpr std::chrono::milliseconds patienceWithOne{10};
    /// A thread that forks while it holds one of the locks itself would wait for ever.
    static constexpr std::chrono::milliseconds patienceWithAll{2000};
    static constexpr std::chrono::microseconds pause{20};

    void prepare() {
        const NoCancellation whileHolding;
        const Clock::time_point end = Clock::now() + patienceWithAll;
        isForkWaiting.store(true);
        for (;;) {
            mutex_.lock();
            if (holdAll() || Clock::now() >= end) {
                return;
            }
            releaseAll();
            mutex_.unlock();
            std::this_thread::sleep_for(pause);
        }
    }

    /// False if another thread holds one.
    bool holdAll() {
        bool all = true;
        for (ForkRegistration* entry = first_; entry != nullptr; entry = entry->next_) {
            if (entry->waits_ == ForkRegistration::Waits::yes && all) {
                entry->isHeld_ = entry->lock_.tryHoldUntil(soon());
                all = entry->isHeld_;
            } else {
                entry->isHeld_ = entry->lock_.tryHoldUntil({});
            }
        }
        return all;
    }

    static std::timespec soon() {
        constexpr long nanosecondsPerSecond = 1'000'000'000;
        std::timespec time{};
        clock_gettime(CLOCK_REALTIME, &time);
        time.tv_nsec += std::chrono::nanoseconds(patienceWithOne).count();
        time.tv_sec += time.tv_nsec / nanosecondsPerSecond;
        time.tv_nsec %= nanosecondsPerSecond;
        return time;
    }

    void releaseAll() {
        for (ForkRegistration* entry = first_; entry != nullptr; entry = entry->next_) {
            if (entry->isHeld_) {
                entry->lock_.release();
            }
        }
    }

    void continueInParent() {
        isForkWaiting.store(false);
        releaseAll();
        mutex_.unlock();
    }

    void continueInChild() {
        isForkWaiting.store(false);
        generation.fetch_add(1);
        for (ForkRegistration* entry = first_; entry != nullptr; entry = entry->next_) {
            if (entry->isHeld_) {
                entry->lock_.release();
            } else {
                entry->lock_.renew();
            }
        }
        for (void (*const function)() : functions_) {
            function();
        }
        mutex_.unlock();
    }

    std::mutex mutex_;
    ForkRegistration* first_ = nullptr;
    std::vector<void (*)()> functions_;
};

void callInForkedChild(void (*function)()) {
    ForkRegistry::shared().add(function);
}

ForkRegistration::ForkRegistration(HeldAcrossFork& lock, Waits waits) : lock_(lock), waits_(waits) {
    ForkRegistry::shared().add(*this);
}

ForkRegistration::~ForkRegistration() {
    ForkRegistry::shared().remove(*this);
}

}  // namespace vorna
