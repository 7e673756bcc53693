// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Log.h>

#include <vorna/base/CatchAll.h>
#include <vorna/text/Utf8.h>

#include <cstdio>
#include <exception>
#include <string>

namespace vorna::log {

constinit std::atomic<bool> enabled = false;

namespace {

std::string joined(std::string text, std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces) {
        text += piece;
    }
    return text;
}

void printLine(std::string line) {
    if (!utf8::isValid(line)) {
        line = utf8::repaired(line);
    }
    line += '\n';
    // One call per line: the stream's lock keeps the lines of different threads apart.
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

/// The message of the current exception.
std::string currentProblem() {
    return catchAll(
        []() -> std::string {
            try {
                throw;
            } catch (const std::exception& problem) {
                return problem.what();
            }
        },
        [] { return std::string("an exception of unknown type"); });
}

}  // namespace

void debug(std::initializer_list<std::string_view> pieces) {
    if (!enabled.load(std::memory_order_relaxed)) {
        return;
    }
    printLine(joined("[VornaSDK] ", pieces));
}

void always(std::initializer_list<std::string_view> pieces) {
    printLine(joined("", pieces));
}

void failure(std::initializer_list<std::string_view> pieces) {
    // If even the line cannot be printed, there is nothing left to do.
    catchAll([&] { debug({joined("", pieces), " has failed: ", currentProblem()}); }, [] {});
}

}  // namespace vorna::log
