#pragma once

/// The tasks that wait for the worker, first in, first out.

#include <vorna/events/VornaTask.h>

#include <cstddef>
#include <deque>
#include <optional>
#include <semaphore>

namespace vorna {

/// Any thread. The semaphore is held only while a task is put in or taken out.
class VornaTaskQueue {
  public:
    void enqueue(VornaTask task);

    /// The first task, or nothing when none waits. Never blocks for one.
    std::optional<VornaTask> dequeue();

    std::size_t size() const;

  private:
    mutable std::binary_semaphore semaphore_{1};
    std::deque<VornaTask> queue_;
};

}  // namespace vorna
