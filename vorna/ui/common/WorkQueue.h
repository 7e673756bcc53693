// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Work on its way from one thread to another, in the order of its coming. Any thread.
///
/// Qt could carry the work as well. But the thread sanitizer sees this lock, and none of Qt's: what passes
/// through here is known to be handed over, and what is shared by mistake still shows.

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

    /// Does what was added first of all that waits, if anything does.
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

    std::mutex mutex_;
    std::deque<std::function<void()>> waiting_;
};

}  // namespace vorna::ui
