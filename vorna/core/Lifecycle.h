// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the library does as the application comes and goes: it keeps the usage session, reports it, and asks
/// for a fresh remote configuration after a long absence.

#include <vorna/core/EventRecorder.h>
#include <vorna/core/VornaSession.h>
#include <vorna/platform/Clock.h>
#include <vorna/platform/RandomSource.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace vorna {

/// The handlers run on the thread that posts the signal: the host's main thread.
class Lifecycle {
  public:
    Lifecycle(std::shared_ptr<const Clock> clock, std::shared_ptr<RandomSource> randomSource,
              std::shared_ptr<EventRecorder> recorder);

    /// Observes the six signals on the default notification centre, for the life of the process.
    void observe();

    void appDidEnterBackground();
    void appWillEnterForeground();

    /// Opens a session; one that is still open is reported first, through the queue. After five minutes or
    /// more of inactivity the remote configuration is fetched again. Fatal when the clock has been set back
    /// behind the beginning of the inactivity.
    void appDidBecomeActive();

    /// Ends the session: it is handed to the HTTP client before this returns, since the application may be
    /// suspended at any moment from now on.
    void appWillResignActive();

    void appDidFinishLaunching();
    void appDidReceiveMemoryWarning();

    /// Absent between a resignation and the next activation.
    std::optional<VornaSession> currentSession() const;

  private:
    const std::shared_ptr<const Clock> clock_;
    const std::shared_ptr<RandomSource> randomSource_;
    const std::shared_ptr<EventRecorder> recorder_;

    mutable std::mutex mutex_;
    std::optional<VornaSession> currentSession_;
    /// Seconds since 1970 of the last resignation; absent while the application is active.
    std::optional<std::uint64_t> inactiveTime_;
};

}  // namespace vorna
