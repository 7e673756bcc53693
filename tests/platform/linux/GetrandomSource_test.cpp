// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/GetrandomSource.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <thread>
#include <vector>

namespace vorna {
namespace {

TEST(GetrandomSource, EveryBitOfA16BitNumberVaries) {
    GetrandomSource source;
    unsigned set = 0;
    unsigned clear = 0;
    for (int draw = 0; draw < 1000; ++draw) {
        const unsigned number = source.next16();
        set |= number;
        clear |= ~number & 0xFFFFU;
    }
    EXPECT_EQ(set, 0xFFFFU);
    EXPECT_EQ(clear, 0xFFFFU);
}

TEST(GetrandomSource, EveryBitOfA64BitNumberVaries) {
    GetrandomSource source;
    std::uint64_t set = 0;
    std::uint64_t clear = 0;
    for (int draw = 0; draw < 1000; ++draw) {
        const std::uint64_t number = source.next64();
        set |= number;
        clear |= ~number;
    }
    EXPECT_EQ(set, UINT64_MAX);
    EXPECT_EQ(clear, UINT64_MAX);
}

TEST(GetrandomSource, NumbersDrawnOnSeveralThreadsDoNotRepeat) {
    GetrandomSource source;
    std::vector<std::vector<std::uint64_t>> drawn(4);
    std::vector<std::thread> threads;
    threads.reserve(drawn.size());
    for (auto& numbers : drawn) {
        threads.emplace_back([&source, &numbers] {
            for (int draw = 0; draw < 5000; ++draw) {
                numbers.push_back(source.next64());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::set<std::uint64_t> different;
    for (const auto& numbers : drawn) {
        different.insert(numbers.begin(), numbers.end());
    }
    EXPECT_EQ(different.size(), 20000U);
}

}  // namespace
}  // namespace vorna
