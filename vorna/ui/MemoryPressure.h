// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Watches for memory shortage using the kernel's pressure stall information.

#include <QtCore/QSocketNotifier>

#include <functional>
#include <memory>

namespace vorna::ui {

/// Main thread. Silent if the kernel has no pressure information or denies access to it.
class MemoryPressure {
  public:
    /// Calls back when tasks have stalled on memory for 0.2 s within 2 s, at most once in that time.
    explicit MemoryPressure(std::function<void()> changed, const char* file = "/proc/pressure/memory");
    MemoryPressure(const MemoryPressure&) = delete;
    MemoryPressure& operator=(const MemoryPressure&) = delete;
    MemoryPressure(MemoryPressure&&) = delete;
    MemoryPressure& operator=(MemoryPressure&&) = delete;
    ~MemoryPressure();

  private:
    const std::function<void()> changed_;
    int descriptor_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorna::ui
