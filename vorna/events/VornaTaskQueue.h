// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The queue of tasks for the worker, first in, first out.

#include <vorna/events/VornaTask.h>

#include <semaphore.h>

#include <cstddef>
#include <deque>
#include <optional>

namespace vorna {

/// Any thread. The semaphore is held only while a task is added or removed.
class VornaTaskQueue {
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
    /// Created with the value 1. From the C library, since libstdc++ 12's makes a system call for every
    /// release, even if nothing waits.
    mutable sem_t semaphore_{};
    std::deque<VornaTask> queue_;
};

}  // namespace vorna
