// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Log.h>

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

void failure(std::initializer_list<std::string_view> pieces) noexcept {
    try {
        const std::string what = joined("", pieces);
        try {
            throw;
        } catch (const std::exception& problem) {
            debug({what, " has failed: ", problem.what()});
        } catch (...) {
            debug({what, " has failed: an exception of unknown type"});
        }
    } catch (...) {  // NOLINT(bugprone-empty-catch): there is nothing left to do
    }
}

}  // namespace vorna::log
