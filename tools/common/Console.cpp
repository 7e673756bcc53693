// SPDX-License-Identifier: Apache-2.0
#include <tools/common/Console.h>

#include <cstdio>
#include <string>

namespace vorna::tools {
namespace {

// One write per line keeps lines of several threads apart.
void write(std::FILE* stream, std::string text) {
    text += '\n';
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stream));
    static_cast<void>(std::fflush(stream));
}

}  // namespace

void printLine(std::string_view line) {
    write(stdout, std::string(line));
}

void printError(std::string_view program, std::string_view message) {
    write(stderr, std::string(program).append(": ").append(message));
}

}  // namespace vorna::tools
