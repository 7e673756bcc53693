// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The way out of the few states in which going on would do harm: an identity that is stored but cannot be
/// read, no folder for documents, a clock that reads an impossible date, a task without its data.

#include <string_view>

namespace vorna {

/// Writes "[VornaSDK] Fatal error: " and the reason as one line on standard error, whatever the debug switch
/// says, and aborts the process. Any thread.
[[noreturn]] void fatalError(std::string_view reason) noexcept;

}  // namespace vorna
