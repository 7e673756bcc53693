// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The queue of tasks for the worker, first in, first out.

#include <vorna/events/VornaTask.h>
#include <vorna/platform/Fork.h>

#include <semaphore.h>

#include <cstddef>
#include <ctime>
#include <deque>
#include <optional>

namespace vorna {

/// Any thread. The semaphore is held only while a task is added or removed. In the child of a fork the queue
/// is empty: the tasks that waited are the parent's.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): nothing derives from it
class VornaTaskQueue final : private HeldAcrossFork {
  public:
    VornaTaskQueue();
    VornaTaskQueue(const VornaTaskQueue&) = delete;
    VornaTaskQueue& operator=(const VornaTaskQueue&) = delete;
    VornaTaskQueue(VornaTaskQueue&&) = delete;
    VornaTaskQueue& operator=(VornaTaskQueue&&) = delete;
    ~VornaTaskQueue();

    void enqueue(VornaTask task);

    /// Removes and returns the first task; std::nullopt if the queue is empty. Never waits for a task.
    std::optional<VornaTask> dequeue();

    std::size_t size() const;

  private:
    bool tryHoldUntil(const std::timespec& time) noexcept override;
    void release() noexcept override;
    void renew() noexcept override;

    void leaveParentsTasks() const;

    /// Created with the value 1. From the C library, since libstdc++ 12's makes a system call for every
    /// release, even if nothing waits.
    mutable sem_t semaphore_{};
    mutable std::deque<VornaTask> queue_;
    mutable unsigned generation_ = forkGeneration();
    ForkRegistration registration_{*this};
};

}  // namespace vorna
