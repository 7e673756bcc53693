// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Stops the library's threads when the process leaves `main` or calls `exit`.
///
/// Destructors of statics and the exit handlers of system libraries (TLS above all) run while our threads
/// are still alive; one that kept running would use objects that have just been torn down. `ServiceThread`
/// registers every thread here.
///
/// How long `exit` waits, all threads together:
///
///   80 ms   until every thread rests; milliseconds are usual
///   grace   until a thread that has one (`PlatformOptions::exitGrace`: the HTTP client's) has finished what
///           is under way, counted from the same moment; not at all if nothing is under way
///   1 s     on top, only while a thread is inside vital work, such as TLS; that takes milliseconds unless
///           the machine is overloaded

#include <chrono>
#include <memory>

namespace vorna {

/// When `exit` began; `time_point::max()` before. Cheap; any thread.
std::chrono::steady_clock::time_point timeOfExit() noexcept;

/// True from the moment `exit` has begun. Cheap; any thread.
inline bool processIsExiting() noexcept {
    return timeOfExit() != std::chrono::steady_clock::time_point::max();
}

/// True once `exit` no longer waits for threads, except for vital work.
bool exitHasMovedOn() noexcept;

/// Something that rests when the process exits. Called on the exiting thread; if that is the thread to be
/// stopped, each wait returns true immediately.
class RestsAtExit {
  public:
    RestsAtExit() = default;
    RestsAtExit(const RestsAtExit&) = delete;
    RestsAtExit& operator=(const RestsAtExit&) = delete;
    RestsAtExit(RestsAtExit&&) = delete;
    RestsAtExit& operator=(RestsAtExit&&) = delete;
    virtual ~RestsAtExit() = default;

    virtual void requestStop() noexcept = 0;

    /// How long it may finish what is under way.
    virtual std::chrono::milliseconds exitGrace() const noexcept = 0;

    /// Waits until it rests; false if it does not do so by the deadline.
    virtual bool awaitRest(std::chrono::steady_clock::time_point deadline) = 0;

    /// Waits until it rests or uses nothing that is torn down at exit; false if neither is so by the
    /// deadline.
    virtual bool awaitSafety(std::chrono::steady_clock::time_point deadline) = 0;
};

/// Registers it to be stopped before the destructors of all statics constructed before this call. All
/// registered threads are asked to stop together. Exit continues without those that still do not rest when
/// the time is up.
void restAtProcessExit(std::weak_ptr<RestsAtExit> rester);

}  // namespace vorna
