// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What becomes of the library in the child of a fork.
///
/// The child has only the thread that forked, copies of the parent's memory and descriptors, and every lock
/// in the state in which some thread of the parent held it. So:
///
/// - Each of our locks is a `Mutex` (Mutex.h) or registers itself here: a fork waits until it can hold all of
///   them, and both processes go on without anything held or half changed.
/// - Whatever belongs to the parent alone (threads, connections, requests and tasks that wait) remembers the
///   generation in which it was made. In another generation its owner leaves it behind, without a word to the
///   other side of a connection, and begins afresh. That happens at the child's next operation, so a child
///   that only runs another program, or only exits, pays nothing.

#include <vorna/base/Export.h>

#include <atomic>
#include <ctime>

namespace vorna {

/// Differs between a process and its forked children.
VORNA_EXPORT unsigned forkGeneration() noexcept;

/// Has the function called in each forked child, on its only thread. It must be quick.
void callInForkedChild(void (*function)());

/// True while a fork waits for the locks.
VORNA_EXPORT extern std::atomic<bool> isForkWaiting;

/// Waits for the fork, for a moment at most.
VORNA_EXPORT void giveWayNow() noexcept;

/// Before taking a lock: threads that use one incessantly would never leave it to a fork that waits for it.
inline void giveWayToFork() noexcept {
    if (isForkWaiting.load(std::memory_order_relaxed)) {
        giveWayNow();
    }
}

/// A lock as a fork sees it. Called on the thread that forks.
class HeldAcrossFork {
  public:
    HeldAcrossFork() = default;
    HeldAcrossFork(const HeldAcrossFork&) = delete;
    HeldAcrossFork& operator=(const HeldAcrossFork&) = delete;
    HeldAcrossFork(HeldAcrossFork&&) = delete;
    HeldAcrossFork& operator=(HeldAcrossFork&&) = delete;

    /// False if another thread holds it until then, by the system's clock.
    virtual bool tryHoldUntil(const std::timespec& time) noexcept = 0;

    /// Undoes a successful `tryHoldUntil`, in the parent as in the child.
    virtual void release() noexcept = 0;

    /// In the child, if it could not be held: makes it free.
    virtual void renew() noexcept = 0;

  protected:
    ~HeldAcrossFork() = default;
};

/// Registers a lock during its lifetime: the last member of a class whose members it uses.
class VORNA_EXPORT ForkRegistration {
  public:
    /// A fork does not wait for a lock that is held for long, such as while a file is written; what that lock
    /// guards must then be sound at any moment.
    enum class Waits : bool { no, yes };

    explicit ForkRegistration(HeldAcrossFork& lock, Waits waits = Waits::yes);
    ForkRegistration(const ForkRegistration&) = delete;
    ForkRegistration& operator=(const ForkRegistration&) = delete;
    ForkRegistration(ForkRegistration&&) = delete;
    ForkRegistration& operator=(ForkRegistration&&) = delete;
    ~ForkRegistration();

  private:
    friend class ForkRegistry;

    HeldAcrossFork& lock_;
    const Waits waits_;
    bool isHeld_ = false;
    ForkRegistration* next_ = nullptr;
    ForkRegistration* previous_ = nullptr;
};

}  // namespace vorna
