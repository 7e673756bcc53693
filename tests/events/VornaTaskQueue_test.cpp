// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/VornaTaskQueue.h>

#include <tests/support/Samples.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace vorna {
namespace {

VornaTask task(std::string name) {
    return {VornaTaskTypes::event, support::sampleEvent(std::move(name))};
}

std::string nameOf(const VornaTask& task) {
    return std::get<EventData>(task.data).name;
}

TEST(VornaTaskTypes, HaveTheirNumbers) {
    EXPECT_LT(VornaTaskTypes::event, VornaTaskTypes::remoteConfig);
    EXPECT_EQ(static_cast<int>(VornaTaskTypes::event), 0);
    EXPECT_EQ(static_cast<int>(VornaTaskTypes::remoteConfig), 1);
}

TEST(VornaTaskQueue, IsFirstInFirstOut) {
    VornaTaskQueue queue;
    for (const char* const name : {"a", "b", "c"}) {
        queue.enqueue(task(name));
    }
    EXPECT_EQ(queue.size(), 3U);
    EXPECT_EQ(nameOf(*queue.dequeue()), "a");
    EXPECT_EQ(nameOf(*queue.dequeue()), "b");
    EXPECT_EQ(nameOf(*queue.dequeue()), "c");
}

TEST(VornaTaskQueue, ReturnsNothingWithoutWaitingWhenEmpty) {
    VornaTaskQueue queue;
    EXPECT_FALSE(queue.dequeue().has_value());
}

TEST(VornaTaskQueue, KeepsTheOrderOfEachThreadAndLosesNothing) {
    constexpr int threadCount = 8;
    constexpr int eachCount = 2000;
    VornaTaskQueue queue;
    VornaTask pattern = task("");
    std::vector<std::thread> producers;
    for (int thread = 0; thread < threadCount; ++thread) {
        producers.emplace_back([&queue, pattern, thread]() mutable {
            for (int count = 0; count < eachCount; ++count) {
                EventData& event = std::get<EventData>(pattern.data);
                event.name = std::to_string(thread);
                event.createDate = static_cast<std::uint64_t>(count);
                queue.enqueue(pattern);
            }
        });
    }
    std::map<std::string, std::uint64_t> next;
    for (int taken = 0; taken < threadCount * eachCount;) {
        if (const std::optional<VornaTask> taskTaken = queue.dequeue()) {
            const EventData& event = std::get<EventData>(taskTaken->data);
            EXPECT_EQ(event.createDate, next[event.name]++);
            ++taken;
        } else {
            std::this_thread::yield();
        }
    }
    for (std::thread& producer : producers) {
        producer.join();
    }
    EXPECT_FALSE(queue.dequeue().has_value());
}

}  // namespace
}  // namespace vorna
