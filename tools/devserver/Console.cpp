// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Console.h>

#include <tools/common/Console.h>

namespace vorna::devserver {
namespace {

constexpr bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

void appendHexadecimal(std::string& text, unsigned char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    text += "\\x";
    text += digits[byte >> 4U];
    text += digits[byte & 0x0FU];
}

}  // namespace

Console standardConsole(bool quiet) {
    Console console;
    if (!quiet) {
        console.request = [](std::string_view line) { tools::printLine(line); };
    }
    console.trouble = [](std::string_view line) { tools::printError("vorna-devserver", line); };
    return console;
}

std::string printable(std::string_view text, std::size_t limit) {
    std::string_view shown = text;
    if (shown.size() > limit) {
        std::size_t end = limit;
        while (end > 0 && continuesCharacter(text[end])) {
            --end;
        }
        shown = text.substr(0, end);
    }

    std::string result;
    result.reserve(shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto byte = static_cast<unsigned char>(shown[i]);
        const auto next = i + 1 < shown.size() ? static_cast<unsigned char>(shown[i + 1]) : 0U;
        if (byte == '\n') {
            result += "\\n";
        } else if (byte == '\r') {
            result += "\\r";
        } else if (byte == '\t') {
            result += "\\t";
        } else if (byte == '\\') {
            result += "\\\\";
        } else if (byte < 0x20 || byte == 0x7F) {
            appendHexadecimal(result, byte);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {
            // The control characters U+0080 to U+009F, which some terminals interpret.
            appendHexadecimal(result, byte);
            appendHexadecimal(result, static_cast<unsigned char>(next));
            ++i;
        } else {
            result += shown[i];
        }
    }
    if (shown.size() < text.size()) {
        result += "... (" + std::to_string(text.size()) + " bytes)";
    }
    return result;
}

}  // namespace vorna::devserver
