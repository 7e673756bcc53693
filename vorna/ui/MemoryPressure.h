// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Tells when the system runs short of memory, where the kernel tells (pressure stall information).

#include <QtCore/QSocketNotifier>

#include <functional>
#include <memory>

namespace vorna::ui {

/// Main thread. Silent on a kernel without pressure information or that does not let us ask for it.
class MemoryPressure {
  public:
    /// Called when tasks have stood still for want of memory for a fifth of a second within two; at most once
    /// in that time.
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
