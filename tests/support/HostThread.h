// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A thread of the host that may end in the middle of a call: by `pthread_exit`, as Python ends its daemon
/// threads, or because it is cancelled.

#include <pthread.h>

#include <cstdlib>
#include <functional>
#include <utility>

namespace vorna::support {

class HostThread {
  public:
    explicit HostThread(std::function<void()> function) : function_(std::move(function)) {
        if (pthread_create(&thread_, nullptr, run, this) != 0) {
            std::abort();
        }
    }

    HostThread(const HostThread&) = delete;
    HostThread& operator=(const HostThread&) = delete;
    HostThread(HostThread&&) = delete;
    HostThread& operator=(HostThread&&) = delete;

    ~HostThread() {
        if (!isJoined_) {
            pthread_join(thread_, nullptr);
        }
    }

    /// Ends the calling thread at once, whatever it is in the middle of.
    [[noreturn]] static void endHere() { pthread_exit(&mark); }

    void cancel() { pthread_cancel(thread_); }

    /// Waits for the end.
    void join() {
        isJoined_ = true;
        pthread_join(thread_, &result_);
    }

    // After `join`.

    bool wasCancelled() const { return result_ == PTHREAD_CANCELED; }

    bool endedItself() const { return result_ == &mark; }

    bool hasReturned() const { return result_ == nullptr; }

  private:
    static void* run(void* self) {
        static_cast<HostThread*>(self)->function_();
        return nullptr;
    }

    static inline char mark = 0;

    const std::function<void()> function_;
    pthread_t thread_{};
    void* result_ = nullptr;
    bool isJoined_ = false;
};

}  // namespace vorna::support
