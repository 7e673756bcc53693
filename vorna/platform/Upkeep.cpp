// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Upkeep.h>

#include <vorna/base/CatchAll.h>
#include <vorna/platform/Fork.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>

#include <mutex>
#include <utility>
#include <vector>

namespace vorna {

namespace {

struct Keepers {
    Keepers() { callInForkedChild(upkeep::request); }

    Mutex mutex;
    std::vector<std::weak_ptr<KeepsRunning>> all;
};

Keepers& keepers() {
    static NeverDestroyed<Keepers> value;
    return *value;
}

}  // namespace

constinit std::atomic<bool> upkeep::isRequested = false;

void upkeep::add(std::weak_ptr<KeepsRunning> keeper) {
    const std::scoped_lock lock(keepers().mutex);
    std::erase_if(keepers().all, [](const auto& weak) { return weak.expired(); });
    keepers().all.push_back(std::move(keeper));
}

void upkeep::request() noexcept {
    isRequested.store(true);
}

void upkeep::performNow() {
    std::vector<std::weak_ptr<KeepsRunning>> all;
    {
        const std::scoped_lock lock(keepers().mutex);
        all = keepers().all;
    }
    isRequested.store(false);
    for (const std::weak_ptr<KeepsRunning>& weak : all) {
        if (const std::shared_ptr<KeepsRunning> keeper = weak.lock()) {
            // Most likely out of memory, as when the thread was refused.
            catchAll([&] { keeper->ensureRunning(); }, [] { request(); });
        }
    }
}

}  // namespace vorna
