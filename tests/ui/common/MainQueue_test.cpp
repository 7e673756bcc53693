// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/MainQueue.h>

#include <tests/support/ui/PrintedLines.h>
#include <tests/support/ui/ScreenHost.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace vorna::ui {
namespace {

using std::chrono::milliseconds;
using support::eventually;
using support::letTimePass;
using testing::ElementsAre;

constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t shortest = std::numeric_limits<std::int64_t>::min();

TEST(MainQueue, RunsWorkLaterInTheOrderOfTheCalls) {
    std::vector<int> order;
    for (int i = 0; i < 5; ++i) {
        mainQueue::async([&order, i] { order.push_back(i); });
    }
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(eventually([&] { return order.size() == 5; }));
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4));
}

TEST(MainQueue, RunsWorkFromOtherThreadsOnTheMainThread) {
    EXPECT_TRUE(mainQueue::isCurrent());
    std::vector<int> order;
    QThread* where = nullptr;
    std::thread other([&] {
        EXPECT_FALSE(mainQueue::isCurrent());
        for (int i = 0; i < 100; ++i) {
            mainQueue::async([&order, &where, i] {
                order.push_back(i);
                where = QThread::currentThread();
            });
        }
    });
    other.join();
    EXPECT_TRUE(eventually([&] { return order.size() == 100; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(where, QThread::currentThread());
}

TEST(MainQueue, RunsWorkPostedByWork) {
    bool done = false;
    mainQueue::async([&] { mainQueue::async([&] { done = true; }); });
    EXPECT_TRUE(eventually([&] { return done; }));
}

TEST(MainQueue, LogsAnExceptionAndContinues) {
    support::PrintedLines printed;
    bool done = false;
    mainQueue::async([] { throw std::runtime_error("out of paper"); });
    mainQueue::async([] { throw 5; });
    mainQueue::async([&] { done = true; });
    EXPECT_TRUE(eventually([&] { return done; }));
    EXPECT_THAT(printed.take(),
                ElementsAre("[VornaSDK] A screen operation has failed: out of paper",
                            "[VornaSDK] A screen operation has failed: an exception of unknown type"));
}

struct Delay {
    const char* name;
    std::int64_t seconds;
    bool isDueAtOnce;
};

class DelayedTaskAfter : public testing::TestWithParam<Delay> {};

TEST_P(DelayedTaskAfter, RunsWhenDue) {
    bool done = false;
    const DelayedTask task(GetParam().seconds, [&] { done = true; });
    EXPECT_FALSE(done) << "not before the next turn";
    if (GetParam().isDueAtOnce) {
        EXPECT_TRUE(eventually([&] { return done; }, milliseconds(900)));
    } else {
        letTimePass(milliseconds(300));
        EXPECT_FALSE(done);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Seconds, DelayedTaskAfter,
    testing::Values(Delay{"Zero", 0, true}, Delay{"MinusOne", -1, true}, Delay{"Minimum", shortest, true},
                    Delay{"Two", 2, false}, Delay{"ADay", 86'400, false}, Delay{"AMonth", 2'592'000, false},
                    Delay{"MoreThanMilliseconds32", 2'147'484, false},
                    Delay{"ACentury", 3'155'760'000, false}, Delay{"TwoCenturies", 6'311'520'000, false},
                    Delay{"MostInNanoseconds", 9'223'372'036, false},
                    Delay{"MoreThanNanoseconds", 9'223'372'037, false}, Delay{"Maximum", longest, false}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(DelayedTask, CountsSeconds) {
    QElapsedTimer time;
    time.start();
    bool done = false;
    const DelayedTask task(1, [&] { done = true; });
    EXPECT_TRUE(eventually([&] { return done; }));
    EXPECT_GE(time.elapsed(), 999);
    EXPECT_LE(time.elapsed(), 3000);
}

TEST(DelayedTask, RunsOnce) {
    int times = 0;
    const DelayedTask task(0, [&] { ++times; });
    letTimePass(milliseconds(50));
    EXPECT_EQ(times, 1);
}

TEST(DelayedTask, DoesNotRunAfterItsDestruction) {
    bool done = false;
    {
        const DelayedTask task(0, [&] { done = true; });
    }
    DelayedTask replaced(0, [&] { done = true; });
    replaced = {};
    letTimePass(milliseconds(50));
    EXPECT_FALSE(done);
}

TEST(DelayedTask, SurvivesBeingMoved) {
    bool done = false;
    DelayedTask first(0, [&] { done = true; });
    const DelayedTask second = std::move(first);
    EXPECT_TRUE(eventually([&] { return done; }));
}

TEST(DelayedTask, MayBeDestroyedByItsOwnWork) {
    DelayedTask task;
    bool done = false;
    task = DelayedTask(0, [&] {
        task = {};
        done = true;
    });
    EXPECT_TRUE(eventually([&] { return done; }));
}

TEST(DelayedTask, MayBeReplacedByItsOwnWork) {
    DelayedTask task;
    bool done = false;
    task = DelayedTask(0, [&] { task = DelayedTask(0, [&] { done = true; }); });
    EXPECT_TRUE(eventually([&] { return done; }));
}

}  // namespace
}  // namespace vorna::ui
