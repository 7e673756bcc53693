// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Lets a writer wait until every reader that might still use a former value has left. Readers never wait:
/// each counts itself in and out, and the writer checks the counts.
///
/// The counts are spread over several cache lines, so that readers on different processors do not disturb
/// each other. Each line has two: while the writer waits for one to reach zero, new readers use the other, so
/// steady reading cannot starve the writer.

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace vorna {

class ReadersGate {
  public:
    /// One reader's presence, from `enter` until it is destroyed.
    class Pass {
      public:
        explicit Pass(std::atomic<std::uint32_t>& count) noexcept : count_(count) {
            // Sequentially consistent, as is the reader's load that follows: a writer that does not see this
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

    /// Any number of threads concurrently; two additions, never a wait. The reader must load the value after
    /// this, with sequential consistency.
    [[nodiscard]] Pass enter() noexcept { return Pass(shards_[shardOfThread()].readers[phase_.load()]); }

    /// Waits until all readers that entered before the call have left. Returns false if some remain after the
    /// given time; a later call then waits for them too. One thread at a time.
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
