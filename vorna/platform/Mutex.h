// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's mutex.

#include <vorna/platform/Fork.h>

#include <pthread.h>

#include <ctime>
#include <memory>
#include <mutex>

namespace vorna {

/// A std::mutex that no other thread holds when the process forks, and that is free in the child.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): nothing derives from it
class Mutex final : public std::mutex, private HeldAcrossFork {
  public:
    using Waits = ForkRegistration::Waits;

    explicit Mutex(Waits waits = Waits::yes) : registration_(*this, waits) {}

    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    Mutex(Mutex&&) = delete;
    Mutex& operator=(Mutex&&) = delete;
    ~Mutex() = default;

    void lock() {
        giveWayToFork();
        std::mutex::lock();
    }

  private:
    bool tryHoldUntil(const std::timespec& time) noexcept override {
        return pthread_mutex_timedlock(native_handle(), &time) == 0;
    }

    void release() noexcept override { unlock(); }

    /// Its owner does not exist in the child, so it can only be made anew.
    void renew() noexcept override { std::construct_at(static_cast<std::mutex*>(this)); }

    ForkRegistration registration_;
};

}  // namespace vorna
