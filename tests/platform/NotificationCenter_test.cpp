// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(NotificationCenter, CallsObserversInTheOrderTheyWereAdded) {
    NotificationCenter center;
    std::vector<std::string> calls;
    const auto first = center.addObserver("a", [&](const Notification&) { calls.emplace_back("first"); });
    const auto other = center.addObserver("b", [&](const Notification&) { calls.emplace_back("other"); });
    const auto second = center.addObserver("a", [&](const Notification&) { calls.emplace_back("second"); });
    center.post("a");
    EXPECT_THAT(calls, ElementsAre("first", "second"));
}

TEST(NotificationCenter, PassesNameAndUserInformation) {
    NotificationCenter center;
    std::optional<Notification> seen;
    const auto observation = center.addObserver("n", [&](const Notification& n) { seen = n; });
    center.post("n", {{"flag", true},
                      {"text", std::string("t")},
                      {"table", std::map<std::string, std::string>{{"k", "v"}}}});
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->name, "n");
    EXPECT_EQ(std::get<bool>(seen->userInfo.at("flag")), true);
    EXPECT_EQ(std::get<std::string>(seen->userInfo.at("text")), "t");
    EXPECT_EQ((std::get<std::map<std::string, std::string>>(seen->userInfo.at("table")).at("k")), "v");
    center.post("n");
    EXPECT_THAT(seen->userInfo, IsEmpty());
}

TEST(NotificationCenter, CallsOnTheThreadThatPosts) {
    NotificationCenter center;
    std::thread::id seen;
    const auto observation =
        center.addObserver("n", [&](const Notification&) { seen = std::this_thread::get_id(); });
    std::thread::id posting;
    std::thread thread([&] {
        posting = std::this_thread::get_id();
        center.post("n");
    });
    thread.join();
    EXPECT_EQ(seen, posting);
}

TEST(NotificationCenter, EndsAnObservationWhenItIsDestroyed) {
    NotificationCenter center;
    int calls = 0;
    {
        const auto observation = center.addObserver("n", [&](const Notification&) { ++calls; });
        center.post("n");
    }
    center.post("n");
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, KeepsAnObserverForeverOnRequest) {
    NotificationCenter center;
    int calls = 0;
    center.addObserver("n", [&](const Notification&) { ++calls; }).keepForever();
    center.post("n");
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, LetsARunningObserverEndItselfAndAddOthers) {
    NotificationCenter center;
    std::vector<std::string> calls;
    NotificationCenter::Observation own;
    NotificationCenter::Observation added;
    own = center.addObserver("n", [&](const Notification&) {
        calls.emplace_back("own");
        own.end();
        added = center.addObserver("n", [&](const Notification&) { calls.emplace_back("added"); });
    });
    center.post("n");
    EXPECT_THAT(calls, ElementsAre("own"));
    center.post("n");
    EXPECT_THAT(calls, ElementsAre("own", "added"));
}

TEST(NotificationCenter, DoesNotCallAnObserverThatEndedDuringThePost) {
    NotificationCenter center;
    int calls = 0;
    NotificationCenter::Observation second;
    const auto first = center.addObserver("n", [&](const Notification&) { second.end(); });
    second = center.addObserver("n", [&](const Notification&) { ++calls; });
    center.post("n");
    EXPECT_EQ(calls, 0);
}

TEST(NotificationCenter, PostsFromWithinAnObserver) {
    NotificationCenter center;
    std::vector<std::string> calls;
    const auto outer = center.addObserver("outer", [&](const Notification&) {
        calls.emplace_back("before");
        center.post("inner");
        calls.emplace_back("after");
    });
    const auto inner = center.addObserver("inner", [&](const Notification&) { calls.emplace_back("inner"); });
    center.post("outer");
    EXPECT_THAT(calls, ElementsAre("before", "inner", "after"));
}

TEST(NotificationCenter, WaitsForCallsOnOtherThreadsBeforeAnObservationEnds) {
    NotificationCenter center;
    std::promise<void> entered;
    std::promise<void> mayLeave;
    std::atomic<bool> left = false;
    auto observation = center.addObserver("n", [&](const Notification&) {
        entered.set_value();
        mayLeave.get_future().wait();
        left = true;
    });
    std::thread posting([&] { center.post("n"); });
    entered.get_future().wait();
    std::thread ending([&] {
        observation.end();
        EXPECT_TRUE(left);
    });
    mayLeave.set_value();
    ending.join();
    posting.join();
}

TEST(NotificationCenter, LogsAndDropsAnObserversExceptionAndCallsTheNext) {
    NotificationCenter center;
    log::enabled = true;
    testing::internal::CaptureStdout();
    int calls = 0;
    const auto thrower =
        center.addObserver("n", [](const Notification&) { throw std::runtime_error("host"); });
    const auto stranger = center.addObserver("n", [](const Notification&) { throw 42; });
    const auto next = center.addObserver("n", [&](const Notification&) { ++calls; });
    center.post("n");
    log::enabled = false;
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] An observer of n has failed: host\n"
              "[VornaSDK] An observer of n has failed: an exception of unknown type\n");
}

TEST(NotificationCenter, MayBeDestroyedBeforeAnObservation) {
    std::optional<NotificationCenter> center(std::in_place);
    auto observation = center->addObserver("n", [](const Notification&) {});
    center.reset();
    observation.end();
    SUCCEED();
}

TEST(NotificationCenter, AllowsPostsAndObservationsOnManyThreads) {
    NotificationCenter center;
    std::atomic<int> calls = 0;
    const auto steady = center.addObserver("n", [&](const Notification&) { ++calls; });
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int count = 0; count < 500; ++count) {
                const auto passing = center.addObserver("n", [](const Notification&) {});
                center.post("n");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(calls, 2000);
}

}  // namespace
}  // namespace vorna
