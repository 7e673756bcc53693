#include <vorna/platform/ProcessExit.h>

#include <vorna/platform/NeverDestroyed.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace vorna {

namespace {

using Stop = std::function<void(std::chrono::steady_clock::time_point)>;

constinit std::atomic<bool> exiting = false;

struct Stops {
    std::mutex mutex;
    std::vector<Stop> registered;
};

Stops& stops() {
    static NeverDestroyed<Stops> value;
    return *value;
}

void runStops() {
    exiting.store(true);
    std::vector<Stop> registered;
    {
        const std::scoped_lock lock(stops().mutex);
        registered.swap(stops().registered);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(80);
    std::reverse(registered.begin(), registered.end());
    for (const Stop& stop : registered) {
        stop(deadline);
    }
}

}  // namespace

bool processIsExiting() noexcept {
    return exiting.load(std::memory_order_relaxed);
}

void stopAtProcessExit(Stop stop) {
    const std::scoped_lock lock(stops().mutex);
    stops().registered.push_back(std::move(stop));
    // Registered anew each time: a handler runs before the teardown of all that was set up before it, and
    // what a later thread needs may have been set up only now.
    std::atexit(runStops);
}

}  // namespace vorna
