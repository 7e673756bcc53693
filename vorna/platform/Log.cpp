#include <vorna/platform/Log.h>

#include <vorna/text/Utf8.h>

#include <cstdio>
#include <string>

namespace vorna::log {

constinit std::atomic<bool> enabled = false;

namespace {

void printLine(std::string line) {
    if (!utf8::isValid(line)) {
        line = utf8::repaired(line);
    }
    line += '\n';
    // One call a line: the stream's own lock keeps lines of several threads apart.
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

}  // namespace

void debug(std::initializer_list<std::string_view> pieces) {
    if (!enabled.load(std::memory_order_relaxed)) {
        return;
    }
    std::string line = "[VornaSDK] ";
    for (const std::string_view piece : pieces) {
        line += piece;
    }
    printLine(std::move(line));
}

void always(std::initializer_list<std::string_view> pieces) {
    std::string line;
    for (const std::string_view piece : pieces) {
        line += piece;
    }
    printLine(std::move(line));
}

}  // namespace vorna::log
