// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/EventListManager.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace vorna {
namespace {

TEST(EventListManager, IsEmptyAtFirstAndGrowsInOrder) {
    EventListManager manager;
    EXPECT_EQ(manager.size(), 0U);
    manager.append({"a", "1"});
    manager.append({"b", ""});
    manager.append({"c", std::nullopt});
    EXPECT_THAT(manager.eventList(), testing::ElementsAre(EventShortData{"a", "1"}, EventShortData{"b", ""},
                                                          EventShortData{"c", std::nullopt}));
}

TEST(EventListManager, KeepsEverythingAppendedBySeveralThreadsWhileOthersRead) {
    EventListManager manager;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&manager] {
            for (int count = 0; count < 1000; ++count) {
                manager.append({std::to_string(count), std::nullopt});
                if (count % 100 == 0) {
                    EXPECT_GE(manager.eventList().size(), 1U);
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(manager.size(), 4000U);
}

}  // namespace
}  // namespace vorna
