// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Brings the library's threads to rest when the process leaves `main` or calls `exit`.
///
/// Destructors of statics and the exit handlers of system libraries (TLS above all) run while our threads
/// are still alive; one that kept working would use what has just been torn down. `ServiceThread` registers
/// every thread here.

#include <chrono>
#include <memory>

namespace vorna {

/// True from the moment `exit` has begun. Cheap; any thread.
bool processIsExiting() noexcept;

/// Something that rests when the process exits. Called on the thread that exits; if that is the one that is
/// to rest, each wait returns true at once.
class RestsAtExit {
  public:
    RestsAtExit() = default;
    RestsAtExit(const RestsAtExit&) = delete;
    RestsAtExit& operator=(const RestsAtExit&) = delete;
    RestsAtExit(RestsAtExit&&) = delete;
    RestsAtExit& operator=(RestsAtExit&&) = delete;
    virtual ~RestsAtExit() = default;

    virtual void requestStop() noexcept = 0;

    /// Waits until it rests; false if it does not by the deadline.
    virtual bool awaitRest(std::chrono::steady_clock::time_point deadline) = 0;

    /// Waits until it rests or uses nothing that is torn down at exit; false if it still does at the
    /// deadline.
    virtual bool awaitSafety(std::chrono::steady_clock::time_point deadline) = 0;
};

/// Has it stopped before the destructors of all statics constructed before this call. All that are registered
/// are asked to stop at once and share one deadline of 80 milliseconds; those at something vital are then
/// granted up to a second more. Exit goes on without those that still do not rest.
void restAtProcessExit(std::weak_ptr<RestsAtExit> rester);

}  // namespace vorna
