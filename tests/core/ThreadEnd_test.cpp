// SPDX-License-Identifier: Apache-2.0
/// Threads that end in the middle of the library: cancelled, or by `pthread_exit` in host code that it calls.
/// Each test runs in a process of its own, since a caught cancellation would abort it.

#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/HostThread.h>
#include <tests/support/RecordedEvents.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace vorna {
namespace {

using support::HostThread;
using support::RecordedEvents;
using testing::ExitedWithCode;

class ThreadEnd : public testing::Test {
  protected:
    ThreadEnd() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Ends the process; status 0 if the test has succeeded so far. A hang is a signal.
    static void begin() { alarm(60); }

    static void require(bool condition, int otherwise) {
        if (!condition) {
            _exit(otherwise);
        }
    }

    [[noreturn]] static void succeed() { std::exit(0); }  // NOLINT(concurrency-mt-unsafe)
};

NotificationCenter::Observation observing(std::string_view name, void (*call)()) {
    return NotificationCenter::defaultCenter().addObserver(name, [call](const Notification&) { call(); });
}

bool hasSent(const RecordedEvents& host, std::string_view text) {
    const auto requests = host.http->requests();
    return std::ranges::any_of(requests, [text](const HttpRequest& request) {
        return request.body.find(text) != std::string::npos;
    });
}

bool waitUntilSent(const RecordedEvents& host, std::string_view text) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(50);
    while (!hasSent(host, text) && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return hasSent(host, text);
}

TEST_F(ThreadEnd, InAnObserverIsCleanAndEndsTheCall) {
    const auto run = [] {
        begin();
        auto observation = observing("n", HostThread::endHere);
        HostThread thread([] { NotificationCenter::defaultCenter().post("n"); });
        thread.join();
        require(thread.endedItself(), 2);
        // Waits for running calls.
        observation.end();
        succeed();
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "");
}

TEST_F(ThreadEnd, OfAThreadCancelledInAnObserverIsClean) {
    const auto run = [] {
        begin();
        static std::atomic<bool> isInside = false;
        auto observation = observing("n", [] {
            isInside = true;
            for (;;) {
                pause();
            }
        });
        HostThread thread([] { NotificationCenter::defaultCenter().post("n"); });
        while (!isInside) {
            std::this_thread::yield();
        }
        thread.cancel();
        thread.join();
        require(thread.wasCancelled(), 2);
        observation.end();
        succeed();
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "");
}

TEST_F(ThreadEnd, InAnObserverOfADirectEventLeavesTheLibraryUsable) {
    const auto run = [] {
        begin();
        const RecordedEvents host;
        VornaCoreSDK::Init("app");
        NotificationCenter::defaultCenter().post(UIApplicationDidBecomeActiveNotification);
        require(waitUntilSent(host, "sdk_initialized"), 2);
        {
            const auto observation = observing(VornaCoreSDK::EventListUpdated, HostThread::endHere);
            HostThread thread(
                [] { NotificationCenter::defaultCenter().post(UIApplicationWillResignActiveNotification); });
            thread.join();
            require(thread.endedItself(), 3);
        }
        VornaCoreSDK::Event("afterwards");
        require(waitUntilSent(host, "afterwards"), 4);
        succeed();
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "");
}

TEST_F(ThreadEnd, InAnObserverOnTheWorkersThreadLeavesTheLibraryUsable) {
    const auto run = [] {
        begin();
        const RecordedEvents host;
        static std::atomic<bool> isEnding = false;
        auto observation = observing(VornaCoreSDK::EventListUpdated, [] {
            isEnding = true;
            HostThread::endHere();
        });
        VornaCoreSDK::Init("app");
        while (!isEnding) {
            std::this_thread::yield();
        }
        observation.end();
        // Until the thread has ended altogether, it does not count as missing.
        while (!hasSent(host, "afterwards")) {
            VornaCoreSDK::Event("afterwards");
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        succeed();
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "");
}

TEST_F(ThreadEnd, ByCancellationWhileRecordingIsCleanAtAnyTime) {
    const auto run = [] {
        begin();
        const RecordedEvents host;
        // Writing a line is a point where a cancellation takes effect.
        VornaCoreSDK::debug = true;
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        for (int round = 0; round < 200; ++round) {
            std::atomic<bool> hasBegun = false;
            HostThread thread([&hasBegun] {
                for (;;) {
                    VornaCoreSDK::Event("a", "1");
                    hasBegun = true;
                }
            });
            while (!hasBegun) {
                std::this_thread::yield();
            }
            std::this_thread::sleep_for(std::chrono::microseconds(round));
            thread.cancel();
            thread.join();
            require(thread.wasCancelled(), 2);
        }
        require(RecordedEvents::takeTasks().size() >= 200, 3);
        succeed();
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "");
}

TEST_F(ThreadEnd, ByCancellationDuringInitComesOnceItIsDone) {
    const auto run = [] {
        begin();
        const RecordedEvents host;
        HostThread thread([] {
            pthread_cancel(pthread_self());
            VornaCoreSDK::Init("app");
            pthread_testcancel();
        });
        thread.join();
        require(thread.wasCancelled(), 2);
        require(waitUntilSent(host, "sdk_initialized"), 3);
        succeed();
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "");
}

TEST_F(ThreadEnd, ByCancellationDoesNotInterruptTheEndOfAnObservation) {
    const auto run = [] {
        begin();
        static std::atomic<bool> isInside = false;
        static std::atomic<bool> mayLeave = false;
        auto observation = observing("n", [] {
            isInside = true;
            while (!mayLeave) {
                std::this_thread::yield();
            }
        });
        HostThread posting([] { NotificationCenter::defaultCenter().post("n"); });
        while (!isInside) {
            std::this_thread::yield();
        }
        HostThread ending([&observation] {
            pthread_cancel(pthread_self());
            observation.end();
            require(mayLeave, 2);
            pthread_testcancel();
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        mayLeave = true;
        ending.join();
        require(ending.wasCancelled(), 3);
        succeed();
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vorna
