// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/ProcessExit.h>

#include <vorna/platform/NeverDestroyed.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace vorna {

namespace {

constinit std::atomic<bool> exiting = false;

struct Registered {
    std::mutex mutex;
    std::vector<std::weak_ptr<RestsAtExit>> resters;
};

Registered& registered() {
    static NeverDestroyed<Registered> value;
    return *value;
}

void bringToRest() {
    exiting.store(true);
    std::vector<std::shared_ptr<RestsAtExit>> resters;
    {
        const std::scoped_lock lock(registered().mutex);
        for (const std::weak_ptr<RestsAtExit>& weak : std::exchange(registered().resters, {})) {
            if (std::shared_ptr<RestsAtExit> rester = weak.lock()) {
                resters.push_back(std::move(rester));
            }
        }
    }
    for (const std::shared_ptr<RestsAtExit>& rester : resters) {
        rester->requestStop();
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(80);
    for (const std::shared_ptr<RestsAtExit>& rester : resters) {
        rester->awaitRest(deadline);
    }
    // Vital work takes milliseconds, or up to a second on an overloaded machine. Waiting longer would look
    // like a hang.
    const auto grace = deadline + std::chrono::seconds(1);
    for (const std::shared_ptr<RestsAtExit>& rester : resters) {
        rester->awaitSafety(grace);
    }
}

}  // namespace

bool processIsExiting() noexcept {
    return exiting.load(std::memory_order_relaxed);
}

void restAtProcessExit(std::weak_ptr<RestsAtExit> rester) {
    const std::scoped_lock lock(registered().mutex);
    std::erase_if(registered().resters, [](const auto& weak) { return weak.expired(); });
    registered().resters.push_back(std::move(rester));
    // Registered again each time: a handler runs before the teardown of everything set up before it, and a
    // later thread may use something set up only recently.
    std::atexit(bringToRest);
}

}  // namespace vorna
