// SPDX-License-Identifier: Apache-2.0
#pragma once

/// How the library starts its own threads, so that a host never notices them: they take no signals, and those
/// that can wait run at lowered priority.

#include <cstdint>
#include <functional>
#include <optional>
#include <thread>

namespace vorna {

enum class ThreadPriority : std::uint8_t { normal, low };

/// Starts a thread that runs the function and shows the name (at most 15 characters) in debuggers. Absent
/// when the system refuses another thread. The function must not throw.
[[nodiscard]] std::optional<std::thread> startBackgroundThread(const char* name, ThreadPriority priority,
                                                               std::function<void()> function);

}  // namespace vorna
