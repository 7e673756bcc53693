// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The facade's interface to the screens. `vorna/ui` implements it and installs it with `vorna::ui::attach`;
/// a program without screens has none.

#include <vorna/base/Export.h>
#include <vorna/events/EventListManager.h>
#include <vorna/platform/HttpClient.h>
#include <vorna/platform/System.h>

#include <memory>
#include <string>

namespace vorna {

/// The parts of the library that the screens use: its HTTP client for media, the system to which the main
/// screen's size is reported, the list of sent events.
struct ScreenServices {
    std::shared_ptr<HttpClient> httpClient;
    std::shared_ptr<System> system;
    std::shared_ptr<EventListManager> eventListManager;
};

/// All operations may be called from any thread; an implementation runs them on its main thread. Documents
/// are passed on exactly as the host gave them. An exception thrown by an operation is logged and dropped.
class VORNA_EXPORT Screens {
  public:
    Screens() = default;
    Screens(const Screens&) = delete;
    Screens& operator=(const Screens&) = delete;
    Screens(Screens&&) = delete;
    Screens& operator=(Screens&&) = delete;
    virtual ~Screens() = default;

    /// Called once, as soon as the library's instance exists and the screens are installed, on the thread
    /// that completed the second of these.
    virtual void start(const ScreenServices& services) = 0;

    virtual void showPaywall(std::string jsonString) = 0;
    virtual void closePaywall() = 0;
    virtual void showPaidProductLoadingScreen() = 0;
    virtual void closePaidProductLoadingScreen() = 0;
    virtual void showOnboarding(std::string jsonString) = 0;
    virtual void closeOnboarding() = 0;
    virtual void showEventList() = 0;
    virtual void closeEventList() = 0;
};

/// Directs the facade's screen operations to these screens for the rest of the process. Only the first call
/// has an effect. Any thread.
VORNA_EXPORT void installScreens(std::shared_ptr<Screens> screens);

}  // namespace vorna
