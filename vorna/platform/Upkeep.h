// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Brings back threads that should be running and are not: because the system refused them, host code ended
/// them, or the process is the child of a fork.
///
/// Whoever needs such a thread registers itself here and reports when the thread is missing. The next
/// operation of the library then starts it, on the host's thread, whose priority it inherits.

#include <atomic>
#include <memory>

namespace vorna {

/// Something with a thread that should always run.
class KeepsRunning {
  public:
    KeepsRunning() = default;
    KeepsRunning(const KeepsRunning&) = delete;
    KeepsRunning& operator=(const KeepsRunning&) = delete;
    KeepsRunning(KeepsRunning&&) = delete;
    KeepsRunning& operator=(KeepsRunning&&) = delete;
    virtual ~KeepsRunning() = default;

    /// Starts the thread if it is missing. If that fails, requests another attempt. Any thread.
    virtual void ensureRunning() = 0;
};

namespace upkeep {

/// True if an operation has to call `performNow`.
extern std::atomic<bool> isRequested;

/// Includes it in the upkeep for as long as it exists.
void add(std::weak_ptr<KeepsRunning> keeper);

/// Something is missing; the next operation tries to start it.
void request() noexcept;

/// Starts all that is missing.
void performNow();

/// Called by every operation of the library; costs nothing while nothing is missing.
inline void perform() {
    if (isRequested.load(std::memory_order_relaxed)) {
        performNow();
    }
}

}  // namespace upkeep

}  // namespace vorna
