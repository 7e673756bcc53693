// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/ServiceThread.h>

#include <vorna/platform/ProcessExit.h>

#include <gtest/gtest.h>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Self = ServiceThread::Self;

/// Long enough for anything that does not hang.
Clock::time_point generousDeadline() {
    return Clock::now() + 60s;
}

ServiceThread started(ServiceThread::Loop loop, ThreadPriority priority = ThreadPriority::normal) {
    return ServiceThread::start("test-thread", priority, std::move(loop)).value();
}

/// Runs on a thread of that priority, which has ended when this returns.
template <class Function>
auto resultOnThread(ThreadPriority priority, Function function) {
    std::promise<decltype(function())> result;
    ServiceThread thread = started([&](Self&) { result.set_value(function()); }, priority);
    thread.join();
    return result.get_future().get();
}

TEST(ServiceThread, RunsItsLoopOnAThreadOfThatName) {
    const auto name = [] {
        std::array<char, 16> text{};
        pthread_getname_np(pthread_self(), text.data(), text.size());
        return std::string(text.data());
    };
    EXPECT_EQ(resultOnThread(ThreadPriority::normal, name), "test-thread");
}

TEST(ServiceThread, RecognisesTheCurrentThread) {
    std::promise<ServiceThread*> handle;
    std::promise<bool> isCurrent;
    ServiceThread thread =
        started([&](Self&) { isCurrent.set_value(handle.get_future().get()->isCurrent()); });
    EXPECT_FALSE(thread.isCurrent());
    handle.set_value(&thread);
    EXPECT_TRUE(isCurrent.get_future().get());
    thread.join();
}

TEST(ServiceThread, SleepEndsWhenTheTimeIsUp) {
    std::promise<bool> wasStopped;
    ServiceThread thread = started([&](Self& self) {
        self.sleepFor(1ms);
        wasStopped.set_value(self.stopRequested());
    });
    EXPECT_FALSE(wasStopped.get_future().get());
    thread.join();
}

TEST(ServiceThread, StopRequestEndsASleep) {
    ServiceThread thread = started([](Self& self) {
        while (!self.stopRequested()) {
            self.sleepFor(1h);
        }
    });
    EXPECT_FALSE(thread.awaitRest(Clock::now() + 20ms));
    thread.requestStop();
    EXPECT_TRUE(thread.awaitRest(generousDeadline()));
}

TEST(ServiceThread, StopRequestRunsStopCallbacksBeforeItReturns) {
    std::promise<void> registered;
    std::promise<void> released;
    std::atomic<std::thread::id> calledOn;
    ServiceThread thread = started([&](Self& self) {
        const std::stop_callback callback(self.stopToken(), [&] { calledOn = std::this_thread::get_id(); });
        registered.set_value();
        released.get_future().wait();
    });
    registered.get_future().wait();
    thread.requestStop();
    EXPECT_EQ(calledOn.load(), std::this_thread::get_id());
    released.set_value();
    thread.join();
}

TEST(ServiceThread, DoesNotRestBeforeItsLoopReturns) {
    std::promise<void> released;
    ServiceThread thread = started([&](Self&) { released.get_future().wait(); });
    thread.requestStop();
    EXPECT_FALSE(thread.awaitRest(Clock::now()));
    EXPECT_FALSE(thread.awaitRest(Clock::now() + 20ms));
    released.set_value();
    EXPECT_TRUE(thread.awaitRest(generousDeadline()));
}

TEST(ServiceThread, RestsAfterDestroyingItsLoopsCaptures) {
    auto captured = std::make_shared<int>();
    const std::weak_ptr<int> watch = captured;
    ServiceThread thread = started([captured = std::move(captured)](Self&) {});
    EXPECT_TRUE(thread.awaitRest(generousDeadline()));
    EXPECT_TRUE(watch.expired());
}

TEST(ServiceThread, AwaitingRestOnTheThreadItselfReturnsImmediately) {
    std::promise<ServiceThread*> handle;
    std::promise<bool> rests;
    ServiceThread thread = started(
        [&](Self&) { rests.set_value(handle.get_future().get()->awaitRest(Clock::time_point::max())); });
    handle.set_value(&thread);
    EXPECT_TRUE(rests.get_future().get());
    thread.join();
}

TEST(ServiceThread, RestsWhenParked) {
    ServiceThread thread = started([](Self& self) { self.park(); });
    EXPECT_TRUE(thread.awaitRest(generousDeadline()));
}

TEST(ServiceThread, ReleasingTheHandleRequestsAStopWithoutWaiting) {
    std::promise<void> isReleased;
    std::promise<bool> wasStopped;
    {
        const ServiceThread thread = started([&](Self& self) {
            isReleased.get_future().wait();
            wasStopped.set_value(self.stopRequested());
        });
    }
    // A destructor that waited would never get here.
    isReleased.set_value();
    EXPECT_TRUE(wasStopped.get_future().get());
}

TEST(ServiceThread, AssignmentReleasesTheFormerThread) {
    std::promise<void> firstStopped;
    std::promise<bool> wasSecondStopped;
    std::promise<void> released;
    ServiceThread thread = started([&](Self& self) {
        const std::stop_callback callback(self.stopToken(), [&] { firstStopped.set_value(); });
        self.sleepFor(1h);
    });
    thread = started([&](Self& self) {
        released.get_future().wait();
        wasSecondStopped.set_value(self.stopRequested());
    });
    firstStopped.get_future().wait();
    released.set_value();
    EXPECT_FALSE(wasSecondStopped.get_future().get());
    thread.join();
}

TEST(ServiceThread, JoinStopsItAndWaitsForItsEnd) {
    bool hasEnded = false;
    ServiceThread thread = started([&](Self& self) {
        self.sleepFor(1h);
        std::this_thread::sleep_for(20ms);
        hasEnded = true;
    });
    thread.join();
    EXPECT_TRUE(hasEnded);
    thread.join();
}

TEST(ServiceThread, JoinOnTheThreadItselfReturnsImmediately) {
    std::promise<std::unique_ptr<ServiceThread>> handle;
    std::promise<bool> wasStopped;
    handle.set_value(std::make_unique<ServiceThread>(started([&](Self& self) {
        const std::unique_ptr<ServiceThread> own = handle.get_future().get();
        own->join();
        wasStopped.set_value(self.stopRequested());
    })));
    EXPECT_TRUE(wasStopped.get_future().get());
}

TEST(ServiceThread, BlocksAllSignalsExceptFaults) {
    const auto blocked = [] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        std::vector<int> numbers;
        for (int number = 1; number <= SIGRTMAX; ++number) {
            // Signals reserved by the C library cannot be blocked.
            if ((number < SIGSYS + 1 || number >= SIGRTMIN) && sigismember(&mask, number) == 1) {
                numbers.push_back(number);
            }
        }
        return numbers;
    };
    const std::vector<int> before = blocked();
    const std::vector<int> onThread = resultOnThread(ThreadPriority::normal, blocked);
    EXPECT_EQ(blocked(), before) << "of the thread that starts another one";

    std::vector<int> expected;
    constexpr std::array unblocked = {SIGSEGV, SIGBUS, SIGFPE,  SIGILL, SIGTRAP,
                                      SIGABRT, SIGSYS, SIGKILL, SIGSTOP};
    for (int number = 1; number <= SIGRTMAX; ++number) {
        if ((number < SIGSYS + 1 || number >= SIGRTMIN) &&
            std::ranges::find(unblocked, number) == unblocked.end()) {
            expected.push_back(number);
        }
    }
    EXPECT_EQ(onThread, expected);
}

TEST(ServiceThread, ReportsAClosedPipeAsAnError) {
    const auto writeError = [] {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) {
            return -1;
        }
        close(ends[0]);
        const int error = write(ends[1], "x", 1) < 0 ? errno : 0;
        close(ends[1]);
        return error;
    };
    EXPECT_EQ(resultOnThread(ThreadPriority::normal, writeError), EPIPE);
}

int niceness() {
    return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
}

TEST(ServiceThread, HasThePriorityGiven) {
    const int own = niceness();
    EXPECT_EQ(resultOnThread(ThreadPriority::normal, niceness), own);
    EXPECT_EQ(resultOnThread(ThreadPriority::low, niceness), std::max(own, 10));
    EXPECT_EQ(niceness(), own);
}

TEST(ServiceThread, OfLowPriorityIsNotRaisedInAHostOfLowerPriority) {
    ASSERT_EQ(setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 19), 0);
    EXPECT_EQ(resultOnThread(ThreadPriority::low, niceness), 19);
}

/// Tests the exit of a separate process, which is killed if it takes so long that it must have hung.
class ServiceThreadDeathTest : public testing::Test {
  protected:
    ServiceThreadDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Exits with 0 if the check holds once the threads have had their turn, else with 3. The check comes
    /// before any thread, so that its handler runs after that of the threads.
    static void checkAfterRest(bool (*check)()) {
        alarm(60);
        check_ = check;
        EXPECT_EQ(std::atexit([] {
                      if (!check_()) {
                          std::cerr << "the check failed " << sinceExit().count() << " ms after exit\n";
                          std::_Exit(3);
                      }
                  }),
                  0);
    }

    [[noreturn]] static void exitNow() {
        exitBegan_ = Clock::now();
        std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
    }

    static std::chrono::milliseconds sinceExit() {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - exitBegan_);
    }

    static inline std::atomic<bool> flag_ = false;

  private:
    static inline bool (*check_)() = nullptr;
    static inline Clock::time_point exitBegan_;
};

TEST_F(ServiceThreadDeathTest, ExitStopsEveryThreadAndWaitsForIt) {
    const auto leave = [] {
        static std::atomic<int> restedCount = 0;
        checkAfterRest([] { return restedCount == 3; });
        std::vector<ServiceThread> threads;
        for (int number = 0; number < 3; ++number) {
            threads.push_back(started([](Self& self) {
                self.sleepFor(1h);
                ++restedCount;
            }));
        }
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

/// Like OpenSSL's per-thread state, which must be destroyed before OpenSSL itself.
struct ThreadLocalObject {
    ~ThreadLocalObject() {
        std::this_thread::sleep_for(100ms);
        *isDestroyed = true;
    }

    std::atomic<bool>* isDestroyed;
};

TEST_F(ServiceThreadDeathTest, ExitWaitsForTheThreadLocalObjectsOfAThreadThatHasReturned) {
    const auto leave = [] {
        checkAfterRest([] { return flag_.load(); });
        ServiceThread thread = started([](Self& self) {
            const thread_local ThreadLocalObject object{&flag_};
            self.sleepFor(1h);
        });
        EXPECT_FALSE(thread.awaitRest(Clock::now() + 20ms));
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitStopsAThreadWhoseHandleIsGone) {
    const auto leave = [] {
        checkAfterRest([] { return flag_.load(); });
        static std::promise<void> isReleased;
        {
            const ServiceThread thread = started([](Self&) {
                isReleased.get_future().wait();
                std::this_thread::sleep_for(20ms);
                flag_ = true;
            });
        }
        isReleased.set_value();
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitDoesNotWaitLongForAThreadThatDoesNotRest) {
    const auto leave = [] {
        checkAfterRest([] { return sinceExit() >= 80ms && sinceExit() < 1s; });
        std::promise<void> begun;
        ServiceThread thread = started([&](Self& self) {
            // Vital work that has ended does not count.
            { const Self::Vital vital(self); }
            begun.set_value();
            std::this_thread::sleep_for(1h);
        });
        begun.get_future().wait();
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitWaitsLongerForVitalWork) {
    const auto leave = [] {
        checkAfterRest([] { return flag_.load() && sinceExit() >= 80ms; });
        std::promise<void> begun;
        ServiceThread thread = started([&](Self& self) {
            {
                const Self::Vital vital(self);
                begun.set_value();
                std::this_thread::sleep_for(400ms);
                flag_ = true;
            }
            std::this_thread::sleep_for(1h);
        });
        begun.get_future().wait();
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitAbandonsVitalWorkThatTakesTooLong) {
    const auto leave = [] {
        checkAfterRest([] { return sinceExit() >= 1080ms; });
        std::promise<void> begun;
        ServiceThread thread = started([&](Self& self) {
            const Self::Vital vital(self);
            begun.set_value();
            std::this_thread::sleep_for(1h);
        });
        begun.get_future().wait();
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitLetsAThreadGoOnWithinItsGrace) {
    const auto leave = [] {
        checkAfterRest([] { return flag_ && sinceExit() >= 200ms && sinceExit() < 30s; });
        auto thread = ServiceThread::start(
            "test-thread", ThreadPriority::normal,
            [](Self& self) {
                self.sleepFor(1h);
                if (self.mayGoOn() && self.endOfGrace() > Clock::now()) {
                    std::this_thread::sleep_for(200ms);
                    flag_ = true;
                }
            },
            1min);
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitTellsAThreadWhenItsGraceIsOver) {
    const auto leave = [] {
        checkAfterRest([] {
            // Exit goes on at the same moment.
            while (!flag_ && sinceExit() < 30s) {
                std::this_thread::sleep_for(1ms);
            }
            return flag_ && sinceExit() >= 200ms;
        });
        auto thread = ServiceThread::start(
            "test-thread", ThreadPriority::normal,
            [](Self& self) {
                self.sleepFor(1h);
                while (self.mayGoOn()) {
                    std::this_thread::sleep_for(1ms);
                }
                flag_ = true;
            },
            200ms);
        // It stops at once, whatever the other thread does.
        started([](Self& self) { self.sleepFor(1h); });
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitLetsAThreadWithoutAGraceFinishNothing) {
    const auto leave = [] {
        checkAfterRest([] { return flag_ && sinceExit() < 1s; });
        std::promise<void> begun;
        ServiceThread thread = started([&](Self& self) {
            const bool couldGoOn = self.mayGoOn();
            begun.set_value();
            self.sleepFor(1h);
            flag_ = couldGoOn && !self.mayGoOn();
        });
        begun.get_future().wait();
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, NoThreadGoesOnOnceExitHasMovedOn) {
    const auto leave = [] {
        // Exit does not wait for a thread that it runs on, whatever its grace.
        checkAfterRest([] { return exitHasMovedOn() && flag_; });
        static Self* own = nullptr;
        std::atexit([] { flag_ = !own->mayGoOn(); });
        auto thread = ServiceThread::start(
            "test-thread", ThreadPriority::normal,
            [](Self& self) {
                own = &self;
                exitNow();
            },
            1min);
        thread->awaitRest(Clock::time_point::max());
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitCountsAParkedThreadAsResting) {
    const auto leave = [] {
        checkAfterRest([] { return flag_ && sinceExit() < 1s; });
        ServiceThread thread = started([](Self& self) {
            self.sleepFor(1h);
            const Self::Vital vital(self);
            flag_ = processIsExiting();
            self.park();
        });
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, ExitMayComeFromTheThreadItself) {
    const auto leave = [] {
        checkAfterRest([] { return sinceExit() < 1s; });
        ServiceThread thread = started([](Self& self) {
            const Self::Vital vital(self);
            exitNow();
        });
        thread.awaitRest(Clock::time_point::max());
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, NoThreadStartsOnceExitHasBegun) {
    const auto leave = [] {
        checkAfterRest([] {
            return !ServiceThread::start("test-thread", ThreadPriority::normal, [](Self&) {}).has_value();
        });
        started([](Self&) {}).join();
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(ServiceThreadDeathTest, JoinDoesNotWaitOnceExitHasBegun) {
    const auto leave = [] {
        static std::optional<ServiceThread> thread;
        checkAfterRest([] {
            thread->join();
            return true;
        });
        thread = started([](Self&) { std::this_thread::sleep_for(1h); });
        exitNow();
    };
    EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vorna
