// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A line for what a caller of the bindings gets wrong, in the form of the library's own lines.

#include <vorna/core/VornaCoreSDK.h>

#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>

namespace vorna::bindings {

/// Prints the pieces as one line of the library; nothing while `debug` is off. They are UTF-8.
inline void report(std::initializer_list<std::string_view> pieces) {
    if (!VornaCoreSDK::debug.load(std::memory_order_relaxed)) {
        return;
    }
    std::string line = "[VornaSDK] ";
    for (const std::string_view piece : pieces) {
        line += piece;
    }
    line += '\n';
    // One call a line: the stream's own lock keeps lines of several threads apart.
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

}  // namespace vorna::bindings
