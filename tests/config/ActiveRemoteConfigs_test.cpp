// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/ActiveRemoteConfigs.h>

#include <gtest/gtest.h>

#include <atomic>
#include <charconv>
#include <latch>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace vorna {
namespace {

using Configs = std::map<std::string, std::string>;

TEST(ActiveRemoteConfigs, ReturnTheDefaultUntilReady) {
    const ActiveRemoteConfigs configs;
    EXPECT_FALSE(configs.isReady());
    EXPECT_EQ(configs.lookup("theme", "light"), "light");
    EXPECT_EQ(configs.lookup("", ""), "");
}

TEST(ActiveRemoteConfigs, ReturnTheValueOfTheExactKeyElseTheDefault) {
    ActiveRemoteConfigs configs;
    configs.replace({{"theme", "dark"}, {"empty", ""}});
    EXPECT_TRUE(configs.isReady());
    EXPECT_EQ(configs.lookup("theme", "light"), "dark");
    EXPECT_EQ(configs.lookup("empty", "default"), "");
    EXPECT_EQ(configs.lookup("Theme", "light"), "light");
    EXPECT_EQ(configs.lookup("other", "default"), "default");
}

TEST(ActiveRemoteConfigs, AreReadyWithAnEmptyTableAndReturnDefaults) {
    ActiveRemoteConfigs configs;
    configs.replace({{"theme", "dark"}});
    configs.replace({});
    EXPECT_TRUE(configs.isReady());
    EXPECT_EQ(configs.lookup("theme", "light"), "light");
}

TEST(ActiveRemoteConfigs, ReplaceTheWholeTable) {
    ActiveRemoteConfigs configs;
    configs.replace({{"a", "1"}, {"b", "1"}});
    configs.replace({{"b", "2"}});
    EXPECT_EQ(configs.lookup("a", "gone"), "gone");
    EXPECT_EQ(configs.lookup("b", ""), "2");
}

TEST(ActiveRemoteConfigs, NeverMixTablesWhileTheyAreSwapped) {
    ActiveRemoteConfigs configs;
    const auto tableOf = [](int generation) {
        Configs table;
        // Too long for the small-string optimisation.
        const std::string value = "the value of generation number " + std::to_string(generation);
        for (int key = 0; key < 20; ++key) {
            table.emplace("key_" + std::to_string(key), value);
        }
        return table;
    };
    configs.replace(tableOf(0));
    std::atomic<bool> ends = false;
    std::atomic<int> wrong = 0;
    constexpr std::ptrdiff_t readerCount = 8;
    std::latch allRead(readerCount);
    std::vector<std::thread> readers;
    for (std::ptrdiff_t reader = 0; reader < readerCount; ++reader) {
        readers.emplace_back([&configs, &ends, &wrong, &allRead, reader] {
            const std::string key = "key_" + std::to_string(reader);
            const std::string beginning = "the value of generation number ";
            int last = 0;
            for (std::size_t count = 0; !ends; ++count) {
                const std::string value = configs.lookup(key, "default");
                int generation = -1;
                if (value.starts_with(beginning)) {
                    std::from_chars(value.data() + beginning.size(), value.data() + value.size(), generation);
                }
                if (generation < last || configs.lookup("none", "default") != "default") {
                    ++wrong;
                }
                last = generation;
                if (count == 0) {
                    allRead.count_down();
                }
            }
        });
    }
    allRead.wait();
    for (int generation = 1; generation <= 1'000; ++generation) {
        configs.replace(tableOf(generation));
    }
    ends = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(configs.lookup("key_3", ""), "the value of generation number 1000");
}

}  // namespace
}  // namespace vorna
