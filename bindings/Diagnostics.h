// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Log lines about misuse of the bindings, in the form of the library's own.

#include <vorna/core/VornaCoreSDK.h>

#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vorna::bindings {

/// Logs the pieces, in UTF-8, as one line; does nothing while `debug` is off.
inline void report(std::initializer_list<std::string_view> pieces) {
    if (!VornaCoreSDK::debug.load(std::memory_order_relaxed)) {
        return;
    }
    std::string line = "[VornaSDK] ";
    for (const std::string_view piece : pieces) {
        line += piece;
    }
    line += '\n';
    // One call per line: the stream's lock keeps lines of several threads apart.
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

}  // namespace vorna::bindings
