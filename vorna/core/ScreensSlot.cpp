// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/ScreensSlot.h>

#include <vorna/base/CatchAll.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>

#include <mutex>
#include <optional>
#include <utility>

namespace vorna {

namespace {

/// Used until a window is attached: there is nothing to close, and no window to show a screen in.
class NoScreens final : public Screens {
  public:
    void start(const ScreenServices& /*services*/) override {}

    void showPaywall(std::string /*jsonString*/) override { noTopViewController(); }

    void closePaywall() override { log::debug({"No paywall screen to close"}); }

    void showPaidProductLoadingScreen() override {}

    void closePaidProductLoadingScreen() override {}

    void showOnboarding(std::string /*jsonString*/) override { noTopViewController(); }

    void closeOnboarding() override { log::debug({"ℹ️ No onboarding screens to close"}); }

    void showEventList() override { noTopViewController(); }

    void closeEventList() override {}

  private:
    static void noTopViewController() { log::debug({"❌ Failed to find top view controller"}); }
};

struct Slot {
    Mutex mutex;
    std::shared_ptr<Screens> screens = std::make_shared<NoScreens>();
    bool isTaken = false;
    std::optional<ScreenServices> services;
};

Slot& slot() {
    static NeverDestroyed<Slot> value;
    return *value;
}

/// An exception of the screens must not reach the host, nor prevent the instance from being created.
void start(Screens& screens, const ScreenServices& services) {
    catchAll([&] { screens.start(services); }, [] { log::failure({"Starting the screens"}); });
}

}  // namespace

void installScreens(std::shared_ptr<Screens> screens) {
    std::optional<ScreenServices> services;
    {
        const std::scoped_lock lock(slot().mutex);
        if (!screens || std::exchange(slot().isTaken, true)) {
            return;
        }
        services = slot().services;
        slot().screens = std::move(screens);
    }
    if (services) {
        start(*screens::installed(), *services);
    }
}

std::shared_ptr<Screens> screens::installed() {
    const std::scoped_lock lock(slot().mutex);
    return slot().screens;
}

void screens::provide(const ScreenServices& services) {
    std::shared_ptr<Screens> waiting;
    {
        const std::scoped_lock lock(slot().mutex);
        if (slot().services) {
            return;
        }
        slot().services = services;
        waiting = slot().screens;
    }
    start(*waiting, services);
}

}  // namespace vorna
