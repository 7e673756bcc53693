// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/ReadMostly.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

namespace vorna {
namespace {

/// Counts its live instances; a destroyed instance is recognisable.
class Witness {
  public:
    Witness(std::atomic<int>& alive, std::uint64_t number) : alive_(alive), number_(number), check_(~number) {
        ++alive_;
    }

    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    Witness(Witness&&) = delete;
    Witness& operator=(Witness&&) = delete;

    ~Witness() {
        number_ = 0;
        check_ = 0;
        --alive_;
    }

    std::uint64_t number() const { return number_; }

    bool isIntact() const { return check_ == ~number_; }

  private:
    std::atomic<int>& alive_;
    std::uint64_t number_;
    std::uint64_t check_;
};

/// Its number, or 0 for none.
std::uint64_t numberOf(const ReadMostly<Witness>& value) {
    return value.read([](const Witness* witness) { return witness == nullptr ? 0 : witness->number(); });
}

TEST(ReadMostly, IsInitiallyEmpty) {
    const ReadMostly<Witness> value;
    EXPECT_FALSE(value.hasValue());
    EXPECT_EQ(numberOf(value), 0U);
}

TEST(ReadMostly, ReturnsTheLatestValueAndDestroysFormerOnes) {
    std::atomic<int> alive = 0;
    {
        ReadMostly<Witness> value;
        for (std::uint64_t number = 1; number <= 10'000; ++number) {
            value.replace(std::make_unique<Witness>(alive, number));
            ASSERT_TRUE(value.hasValue());
            ASSERT_EQ(numberOf(value), number);
            ASSERT_EQ(alive, 1);
        }
    }
    EXPECT_EQ(alive, 0);
}

TEST(ReadMostly, KeepsAValueForASlowReaderWithoutBlockingWriters) {
    std::atomic<int> alive = 0;
    ReadMostly<Witness> value;
    value.replace(std::make_unique<Witness>(alive, 1));
    std::latch reads(1);
    std::latch mayLeave(1);
    std::thread reader([&] {
        value.read([&](const Witness* witness) {
            reads.count_down();
            mayLeave.wait();
            EXPECT_TRUE(witness->isIntact());
            EXPECT_EQ(witness->number(), 1U);
            return 0;
        });
    });
    reads.wait();
    value.replace(std::make_unique<Witness>(alive, 2));
    value.replace(std::make_unique<Witness>(alive, 3));
    EXPECT_EQ(numberOf(value), 3U);
    EXPECT_EQ(alive, 3);

    mayLeave.count_down();
    reader.join();
    value.replace(std::make_unique<Witness>(alive, 4));
    EXPECT_EQ(alive, 1);
}

TEST(ReadMostly, ShowsConcurrentReadersOnlyCompleteValuesInOrder) {
    std::atomic<int> alive = 0;
    ReadMostly<Witness> value;
    value.replace(std::make_unique<Witness>(alive, 1));
    std::atomic<bool> ends = false;
    std::atomic<int> broken = 0;
    constexpr std::ptrdiff_t readerCount = 8;
    std::latch allRead(readerCount);
    std::vector<std::thread> readers;
    for (std::ptrdiff_t index = 0; index < readerCount; ++index) {
        readers.emplace_back([&] {
            std::uint64_t last = 0;
            bool first = true;
            while (!ends) {
                value.read([&](const Witness* witness) {
                    if (!witness->isIntact() || witness->number() < last) {
                        ++broken;
                    }
                    last = witness->number();
                    return 0;
                });
                if (first) {
                    first = false;
                    allRead.count_down();
                }
            }
        });
    }
    allRead.wait();
    int mostAlive = 0;
    for (std::uint64_t number = 2; number <= 1'000; ++number) {
        value.replace(std::make_unique<Witness>(alive, number));
        mostAlive = std::max(mostAlive, alive.load());
    }
    ends = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(broken, 0);
    // The one in force, and those held by a reader whose thread was descheduled.
    EXPECT_LT(mostAlive, 100);
    value.replace(std::make_unique<Witness>(alive, 1'001));
    EXPECT_EQ(alive, 1);
}

TEST(ReadMostly, CanBeReplacedFromSeveralThreads) {
    std::atomic<int> alive = 0;
    ReadMostly<Witness> value;
    std::vector<std::thread> writers;
    for (std::uint64_t writer = 1; writer <= 4; ++writer) {
        writers.emplace_back([&, writer] {
            for (int count = 0; count < 500; ++count) {
                value.replace(std::make_unique<Witness>(alive, writer));
                EXPECT_NE(numberOf(value), 0U);
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    value.replace(std::make_unique<Witness>(alive, 9));
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(numberOf(value), 9U);
}

}  // namespace
}  // namespace vorna
