// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Work for the main thread: the thread that runs Qt's event loop and owns every screen.

#include <cstdint>
#include <functional>
#include <memory>

namespace vorna::ui {

namespace mainQueue {

/// True on the main thread.
bool isCurrent();

/// Runs the work on the main thread, in a later turn of its event loop, in the order of the calls. Any
/// thread. Work still waiting when the event loop ends for good is dropped. An exception that leaves the work
/// is logged and dropped.
void async(std::function<void()> work);

}  // namespace mainQueue

/// Work that runs once, on the main thread, after a delay, unless this value is destroyed first. Lives on the
/// main thread.
class DelayedTask {
  public:
    /// No work.
    DelayedTask() noexcept;
    /// Any delay: zero or less means the next turn of the event loop; one of ten thousand years never ends.
    DelayedTask(std::int64_t seconds, std::function<void()> work);
    DelayedTask(const DelayedTask&) = delete;
    DelayedTask& operator=(const DelayedTask&) = delete;
    DelayedTask(DelayedTask&&) noexcept;
    DelayedTask& operator=(DelayedTask&&) noexcept;
    ~DelayedTask();

  private:
    class Timer;
    std::unique_ptr<Timer> timer_;
};

}  // namespace vorna::ui
