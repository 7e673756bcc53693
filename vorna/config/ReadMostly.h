// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A value that is read often, from any thread, and replaced occasionally. Readers never wait for a writer or
/// for each other, and share no reference count.

#include <vorna/config/ReadersGate.h>
#include <vorna/platform/Mutex.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace vorna {

template <class T>
class ReadMostly {
  public:
    /// Holds no value at first.
    ReadMostly() = default;
    ReadMostly(const ReadMostly&) = delete;
    ReadMostly& operator=(const ReadMostly&) = delete;
    ReadMostly(ReadMostly&&) = delete;
    ReadMostly& operator=(ReadMostly&&) = delete;
    /// No readers may remain.
    ~ReadMostly() = default;

    /// Once true, always true.
    bool hasValue() const noexcept { return current_.load(std::memory_order_acquire) != nullptr; }

    /// Calls `look` with a pointer to the value, null if there is none yet, and returns its result. The
    /// pointer is valid during the call, which should be short and must not call `replace`. Any thread.
    template <class Look>
    auto read(Look&& look) const {
        const ReadersGate::Pass pass = gate_.enter();
        return std::forward<Look>(look)(current_.load());
    }

    /// Publishes a value for later reads. The former one is released when its last reader has left; if that
    /// takes longer than 100 ms, a later call releases it. Any thread.
    void replace(std::shared_ptr<const T> value) {
        const std::scoped_lock lock(mutex_);
        current_.store(value.get());
        if (owner_ != nullptr) {
            former_.push_back(std::move(owner_));
        }
        owner_ = std::move(value);
        if (!former_.empty() && gate_.waitForEarlierReaders(std::chrono::milliseconds(100))) {
            former_.clear();
        }
    }

  private:
    mutable ReadersGate gate_;
    std::atomic<const T*> current_ = nullptr;
    Mutex mutex_;
    std::shared_ptr<const T> owner_;
    std::vector<std::shared_ptr<const T>> former_;
};

}  // namespace vorna
