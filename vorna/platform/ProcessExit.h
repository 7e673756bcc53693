// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Brings the library's own threads to rest when the process leaves `main` or calls `exit`.
///
/// Destructors of statics and the exit handlers of system libraries (TLS above all) run while our threads
/// are still alive; a thread that works on would use what has just been torn down. `ServiceThread` registers
/// every thread here.

#include <chrono>
#include <functional>
#include <memory>

namespace vorna {

/// True from the moment `exit` has begun. Cheap; any thread.
bool processIsExiting() noexcept;

/// What comes to rest when the process exits. Called on the thread that exits, which may be the one that is
/// to rest; then every wait returns true at once.
class RestsAtExit {
  public:
    RestsAtExit() = default;
    RestsAtExit(const RestsAtExit&) = delete;
    RestsAtExit& operator=(const RestsAtExit&) = delete;
    RestsAtExit(RestsAtExit&&) = delete;
    RestsAtExit& operator=(RestsAtExit&&) = delete;
    virtual ~RestsAtExit() = default;

    virtual void requestStop() noexcept = 0;

    /// Waits until it rests; false when it does not by the deadline.
    virtual bool awaitRest(std::chrono::steady_clock::time_point deadline) = 0;

    /// Waits until it rests or is at nothing that the exit of the process would pull from under it.
    virtual bool awaitSafety(std::chrono::steady_clock::time_point deadline) = 0;
};

/// Registers something to be stopped before the destructors of all statics made before this call. All that
/// are registered are asked to stop at once and share one deadline of 80 milliseconds, then up to a second
/// more for those at something vital; what has not come to rest by then is left behind.
void restAtProcessExit(std::weak_ptr<RestsAtExit> rester);

/// Being replaced by the above.
void stopAtProcessExit(std::function<void(std::chrono::steady_clock::time_point deadline)> stop);

}  // namespace vorna
