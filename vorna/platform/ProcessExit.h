#pragma once

/// Brings the library's own threads to rest when the process leaves `main` or calls `exit`.
///
/// Destructors of statics and the exit handlers of system libraries (TLS above all) run while our threads
/// are still alive; a thread that works on would use what has just been torn down. So each long-lived thread
/// registers here how to stop it, and works only while `processIsExiting()` is false.

#include <chrono>
#include <functional>

namespace vorna {

/// True from the moment `exit` has begun. Cheap; any thread.
bool processIsExiting() noexcept;

/// Registers what asks one thread to stop and waits until it has, at most until the deadline. It runs once,
/// on the thread that exits, before the destructors of all statics made before this call, and may be that
/// very thread. All registered stops share one bound of 80 milliseconds; a stop exceeds it only to spare the
/// process a crash.
void stopAtProcessExit(std::function<void(std::chrono::steady_clock::time_point deadline)> stop);

}  // namespace vorna
