// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's reactions to the application's lifecycle: it tracks and reports the session, and requests a
/// new remote configuration after a long period of inactivity.

#include <vorna/core/EventRecorder.h>
#include <vorna/core/VornaSession.h>
#include <vorna/platform/Clock.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/RandomSource.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace vorna {

/// The handlers run on the thread that posts the notification: the host's main thread.
class Lifecycle {
  public:
    Lifecycle(std::shared_ptr<const Clock> clock, std::shared_ptr<RandomSource> randomSource,
              std::shared_ptr<EventRecorder> recorder);

    /// Observes the six lifecycle notifications of the default notification centre for the rest of the
    /// process.
    void observe();

    void appDidEnterBackground();
    void appWillEnterForeground();

    /// Starts a session; one still open is queued as an event first. After at least five minutes of
    /// inactivity the remote configuration is fetched again. Fatal if the clock was set back to before the
    /// application became inactive.
    void appDidBecomeActive();

    /// Ends the session and hands its event to the HTTP client before returning, since the application may be
    /// suspended at any moment afterwards.
    void appWillResignActive();

    void appDidFinishLaunching();
    void appDidReceiveMemoryWarning();

    /// Returns the open session; std::nullopt while the application is inactive.
    std::optional<VornaSession> currentSession() const;

  private:
    const std::shared_ptr<const Clock> clock_;
    const std::shared_ptr<RandomSource> randomSource_;
    const std::shared_ptr<EventRecorder> recorder_;

    mutable Mutex mutex_;
    std::optional<VornaSession> currentSession_;
    /// When the application became inactive, in seconds since 1970; std::nullopt while it is active.
    std::optional<std::uint64_t> inactiveTime_;
};

}  // namespace vorna
