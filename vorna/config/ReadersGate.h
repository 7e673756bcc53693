// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Tells a writer when every reader that might still hold a former value has left, without readers ever
/// waiting for anything: a reader counts itself in and out, the writer looks at the counts.
///
/// Counts are spread over several cache lines, so that readers on different processors do not disturb each
/// other, and there are two of them in each: while the writer waits for one of the two to reach zero, new
/// readers are counted in the other. That is why steady reading cannot keep a writer from its end.

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace vorna {

class ReadersGate {
  public:
    /// One reader's presence, from `enter` to its end.
    class Pass {
      public:
        explicit Pass(std::atomic<std::uint32_t>& count) noexcept : count_(count) {
            // Sequentially consistent, as is what follows in the reader: a writer that does not see this
            // count has published its value early enough for the reader to see it.
            count_.fetch_add(1);
        }

        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;
        Pass(Pass&&) = delete;
        Pass& operator=(Pass&&) = delete;

        ~Pass() { count_.fetch_sub(1, std::memory_order_release); }

      private:
        std::atomic<std::uint32_t>& count_;
    };

    /// Any thread, any number at once; two additions, never a wait. What the reader wants to look at is
    /// loaded after this, sequentially consistent.
    [[nodiscard]] Pass enter() noexcept { return Pass(shards_[shardOfThread()].readers[phase_.load()]); }

    /// Waits until all readers that had entered before the call have left. False when some are still there
    /// after the given time; a later call then waits for them too. One thread at a time.
    bool waitForEarlierReaders(std::chrono::milliseconds atMost);

  private:
    static constexpr std::size_t shardCount = 16;
    static constexpr std::size_t cacheLine = 64;

    struct alignas(cacheLine) Shard {
        std::array<std::atomic<std::uint32_t>, 2> readers{};
    };

    static std::size_t shardOfThread() noexcept;
    bool waitUntilEmpty(std::size_t phase, std::chrono::steady_clock::time_point deadline);

    std::array<Shard, shardCount> shards_;
    /// Which of the two counts new readers use.
    alignas(cacheLine) std::atomic<std::size_t> phase_ = 0;
};

}  // namespace vorna
