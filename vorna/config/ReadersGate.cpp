// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/ReadersGate.h>

#include <algorithm>
#include <thread>

namespace vorna {

std::size_t ReadersGate::shardOfThread() noexcept {
    static constinit std::atomic<std::size_t> threads = 0;
    constexpr std::size_t unknown = shardCount;
    static constinit thread_local std::size_t shard = unknown;
    if (shard == unknown) {
        shard = threads.fetch_add(1, std::memory_order_relaxed) % shardCount;
    }
    return shard;
}

bool ReadersGate::waitForEarlierReaders(std::chrono::milliseconds atMost) {
    const auto deadline = std::chrono::steady_clock::now() + atMost;
    const std::size_t former = phase_.load();
    const std::size_t next = 1 - former;
    // Readers that loaded the phase before its last change, but counted themselves only after it.
    if (!waitUntilEmpty(next, deadline)) {
        return false;
    }
    phase_.store(next);
    return waitUntilEmpty(former, deadline);
}

bool ReadersGate::waitUntilEmpty(std::size_t phase, std::chrono::steady_clock::time_point deadline) {
    // Each shard needs to be seen empty once; not all of them at the same moment.
    return std::all_of(shards_.begin(), shards_.end(), [phase, deadline](const Shard& shard) {
        while (shard.readers[phase].load() != 0) {
            if (std::chrono::steady_clock::now() >= deadline) {
                return false;
            }
            // A reader stays for less than a microsecond unless its thread is descheduled.
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
        return true;
    });
}

}  // namespace vorna
