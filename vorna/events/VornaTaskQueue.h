// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The tasks that wait for the worker, first in, first out.

#include <vorna/events/VornaTask.h>

#include <semaphore.h>

#include <cstddef>
#include <deque>
#include <optional>

namespace vorna {

/// Any thread. The semaphore is held only while a task is put in or taken out.
class VornaTaskQueue {
  public:
    VornaTaskQueue();
    VornaTaskQueue(const VornaTaskQueue&) = delete;
    VornaTaskQueue& operator=(const VornaTaskQueue&) = delete;
    VornaTaskQueue(VornaTaskQueue&&) = delete;
    VornaTaskQueue& operator=(VornaTaskQueue&&) = delete;
    ~VornaTaskQueue();

    void enqueue(VornaTask task);

    /// The first task, or nothing when none waits. Never blocks for one.
    std::optional<VornaTask> dequeue();

    std::size_t size() const;

  private:
    /// Created with the value 1. The C library's: that of libstdc++ 12 calls the kernel at every release,
    /// whether anybody waits or not.
    mutable sem_t semaphore_{};
    std::deque<VornaTask> queue_;
};

}  // namespace vorna
