// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Fork.h>

#include <vorna/platform/Mutex.h>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace vorna {
namespace {

using namespace std::chrono_literals;

/// The status with which a forked child ends that returns the function's result; -1 if a signal ended it, as
/// it does one that hangs.
int statusOfChild(const std::function<int()>& function) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        _exit(function());
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Fork, ChangesTheGenerationInTheChildOnly) {
    const Mutex used;
    const unsigned before = forkGeneration();
    EXPECT_EQ(statusOfChild([before] { return forkGeneration() == before ? 1 : 0; }), 0);
    EXPECT_EQ(forkGeneration(), before);
}

TEST(Fork, FindsEveryMutexFreeWhicheverOtherThreadsUseThem) {
    Mutex outer;
    Mutex inner;
    std::atomic<bool> ends = false;
    int value = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            while (!ends) {
                const std::scoped_lock first(outer);
                ++value;
                const std::scoped_lock second(inner);
                std::this_thread::sleep_for(10us);
                --value;
            }
        });
    }
    for (int round = 0; round < 200; ++round) {
        EXPECT_EQ(statusOfChild([&] {
                      const std::scoped_lock both(inner, outer);
                      return value;
                  }),
                  0)
            << "nothing is half changed, round " << round;
    }
    ends = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(Fork, DoesNotWaitForAMutexThatIsHeldForLong) {
    Mutex mutex{Mutex::Waits::no};
    const std::scoped_lock lock(mutex);
    const auto begin = std::chrono::steady_clock::now();
    std::thread([&] {
        EXPECT_EQ(statusOfChild([&] {
                      const std::scoped_lock inChild(mutex);
                      return 0;
                  }),
                  0);
    }).join();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 400ms);
}

TEST(Fork, OnAThreadThatHoldsAMutexIsOnlyDelayed) {
    Mutex mutex;
    const std::scoped_lock lock(mutex);
    EXPECT_EQ(statusOfChild([] { return 0; }), 0);
}

TEST(Fork, ForgetsAMutexThatIsGone) {
    { const Mutex gone; }
    const Mutex kept;
    { const Mutex alsoGone; }
    EXPECT_EQ(statusOfChild([] { return 0; }), 0);
}

TEST(Fork, CallsTheFunctionsForTheChild) {
    static int calls = 0;
    callInForkedChild([] { ++calls; });
    EXPECT_EQ(statusOfChild([] { return calls; }), 1);
    EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace vorna
