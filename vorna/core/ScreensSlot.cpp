// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/ScreensSlot.h>

#include <vorna/platform/Log.h>
#include <vorna/platform/NeverDestroyed.h>

#include <mutex>
#include <optional>
#include <utility>

namespace vorna {

namespace {

/// Stands in until a window is attached: nothing can be found on show, and nothing to show a screen over.
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
    std::mutex mutex;
    std::shared_ptr<Screens> screens = std::make_shared<NoScreens>();
    bool isTaken = false;
    std::optional<ScreenServices> services;
};

Slot& slot() {
    static NeverDestroyed<Slot> value;
    return *value;
}

/// What goes wrong in the screens must not reach their host, nor keep the instance from being made.
void start(Screens& screens, const ScreenServices& services) {
    try {
        screens.start(services);
    } catch (...) {
        log::failure({"The start of the screens"});
    }
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
