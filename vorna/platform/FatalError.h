// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Aborts the process in the few states in which continuing would do harm: a stored identity that cannot be
/// read, no folder for documents, a clock with an impossible date, a task without its data.

#include <string_view>

namespace vorna {

/// Writes "[VornaSDK] Fatal error: " and the reason as one line to standard error, even if `debug` is off,
/// and aborts the process. Any thread.
[[noreturn]] void fatalError(std::string_view reason) noexcept;

}  // namespace vorna
