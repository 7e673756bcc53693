// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/ProcessExit.h>

#include <vorna/platform/Fork.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace vorna {

namespace {

using Time = std::chrono::steady_clock::time_point;

/// A time since the clock's epoch.
constinit std::atomic<Time::rep> exitBegan = Time::max().time_since_epoch().count();
constinit std::atomic<bool> movedOn = false;

struct Registered {
    Mutex mutex;
    std::vector<std::weak_ptr<RestsAtExit>> resters;
    unsigned generation = forkGeneration();

    /// Called with the lock held. In the child of a fork there are no threads to wait for.
    void leaveParentsThreads() {
        if (generation != forkGeneration()) {
            generation = forkGeneration();
            resters.clear();
        }
    }
};

Registered& registered() {
    static NeverDestroyed<Registered> value;
    return *value;
}

void bringToRest() {
    constexpr std::chrono::milliseconds timeToRest(80);
    // Vital work takes milliseconds, or up to a second on an overloaded machine. Waiting longer would look
    // like a hang.
    constexpr std::chrono::seconds timeForVitalWork(1);

    const Time now = std::chrono::steady_clock::now();
    Time::rep notYet = Time::max().time_since_epoch().count();
    exitBegan.compare_exchange_strong(notYet, now.time_since_epoch().count());
    std::vector<std::shared_ptr<RestsAtExit>> resters;
    {
        const std::scoped_lock lock(registered().mutex);
        registered().leaveParentsThreads();
        for (const std::weak_ptr<RestsAtExit>& weak : std::exchange(registered().resters, {})) {
            if (std::shared_ptr<RestsAtExit> rester = weak.lock()) {
                resters.push_back(std::move(rester));
            }
        }
    }
    for (const std::shared_ptr<RestsAtExit>& rester : resters) {
        rester->requestStop();
    }
    for (const std::shared_ptr<RestsAtExit>& rester : resters) {
        rester->awaitRest(now + std::max<std::chrono::milliseconds>(timeToRest, rester->exitGrace()));
    }
    movedOn.store(true);
    const Time end = std::chrono::steady_clock::now() + timeForVitalWork;
    for (const std::shared_ptr<RestsAtExit>& rester : resters) {
        rester->awaitSafety(end);
    }
}

}  // namespace

std::chrono::steady_clock::time_point timeOfExit() noexcept {
    return Time(Time::duration(exitBegan.load(std::memory_order_relaxed)));
}

bool exitHasMovedOn() noexcept {
    return movedOn.load();
}

void restAtProcessExit(std::weak_ptr<RestsAtExit> rester) {
    const std::scoped_lock lock(registered().mutex);
    registered().leaveParentsThreads();
    std::erase_if(registered().resters, [](const auto& weak) { return weak.expired(); });
    registered().resters.push_back(std::move(rester));
    // Registered again each time: a handler runs before the teardown of everything set up before it, and a
    // later thread may use something set up only recently.
    std::atexit(bringToRest);
}

}  // namespace vorna
