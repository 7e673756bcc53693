// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/ShellAssignments.h>

#include <vorna/platform/linux/SystemFile.h>

#include <algorithm>
#include <cstddef>

namespace vorna {

namespace {

/// Within double quotes a backslash escapes only these and is literal otherwise.
constexpr std::string_view escapableInDoubleQuotes = "$`\"\\";

std::string unquoted(std::string_view text) {
    std::string value;
    char quote = '\0';
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        const bool isLast = index + 1 == text.size();
        if (character == '\\' && quote != '\'' && !isLast) {
            const char next = text[++index];
            if (quote == '"' && escapableInDoubleQuotes.find(next) == std::string_view::npos) {
                value += character;
            }
            value += next;
        } else if (quote == '\0' && (character == '"' || character == '\'')) {
            quote = character;
        } else if (quote != '\0' && character == quote) {
            quote = '\0';
        } else {
            value += character;
        }
    }
    return value;
}

}  // namespace

std::optional<std::string> assignedValue(std::string_view contents, std::string_view name) {
    std::optional<std::string> value;
    while (!contents.empty()) {
        const std::size_t length = std::min(contents.find('\n'), contents.size());
        const std::string_view line = trimmed(contents.substr(0, length));
        contents.remove_prefix(std::min(length + 1, contents.size()));
        if (line.size() > name.size() && line.starts_with(name) && line[name.size()] == '=') {
            value = unquoted(line.substr(name.size() + 1));
        }
    }
    if (value && value->empty()) {
        value.reset();
    }
    return value;
}

}  // namespace vorna
