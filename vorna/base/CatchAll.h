// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The only place that catches exceptions of every type.

#include <cxxabi.h>

#include <utility>

namespace vorna {

/// Runs the operation and returns its result. If an exception of any type leaves it, returns the handler's
/// result instead; while the handler runs, that exception is the current one.
///
/// A thread that is cancelled or calls `pthread_exit` is unwound like one that throws, but whoever catches
/// that without passing it on makes the C library abort the process. It passes through here, and so must not
/// meet a function that is noexcept on its way.
template <class Operation, class Handler>
auto catchAll(Operation&& operation, Handler&& handler) -> decltype(operation()) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
        return std::forward<Handler>(handler)();
    }
}

}  // namespace vorna
