// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A queue of work between threads, first in, first out. Any thread.
///
/// Qt could transport the work as well, but the thread sanitizer sees this lock and none of Qt's: so it
/// accepts data handed over here and still finds data shared by mistake.

#include <vorna/platform/Mutex.h>

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace vorna::ui {

class WorkQueue {
  public:
    void add(std::function<void()> work) {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(work));
    }

    /// Runs the oldest work in the queue, if there is any.
    void runFirst() {
        if (const std::function<void()> work = takeFirst()) {
            work();
        }
    }

  private:
    std::function<void()> takeFirst() {
        const std::lock_guard lock(mutex_);
        if (waiting_.empty()) {
            return {};
        }
        std::function<void()> work = std::move(waiting_.front());
        waiting_.pop_front();
        return work;
    }

    Mutex mutex_;
    std::deque<std::function<void()>> waiting_;
};

}  // namespace vorna::ui
