// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/Whitespace.h>

#include <vorna/text/CodePoints.h>

#include <utf8proc.h>

namespace vorna::text {

bool isWhiteSpace(char32_t codePoint) noexcept {
    if (codePoint < 0x80) {
        return codePoint == U' ' || (codePoint >= U'\t' && codePoint <= U'\r');
    }
    if (codePoint == 0x85) {
        return true;
    }
    const utf8proc_category_t category = utf8proc_category(static_cast<utf8proc_int32_t>(codePoint));
    return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty()) {
        const CodePoint first = firstCodePoint(text);
        if (!isWhiteSpace(first.value)) {
            break;
        }
        text.remove_prefix(first.length);
    }
    while (!text.empty()) {
        const CodePoint last = lastCodePoint(text);
        if (!isWhiteSpace(last.value)) {
            break;
        }
        text.remove_suffix(last.length);
    }
    return text;
}

bool isBlank(std::string_view text) noexcept {
    return trimmed(text).empty();
}

}  // namespace vorna::text
