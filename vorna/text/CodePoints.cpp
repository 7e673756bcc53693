// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/CodePoints.h>

#include <utf8proc.h>

#include <algorithm>

namespace vorna::text {

namespace {

constexpr char32_t replacement = 0xFFFD;

}  // namespace

CodePoint firstCodePoint(std::string_view text) noexcept {
    if (text.empty()) {
        return {};
    }
    utf8proc_int32_t value = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                     static_cast<utf8proc_ssize_t>(text.size()), &value);
    if (length <= 0) {
        return {replacement, 1};
    }
    return {static_cast<char32_t>(value), static_cast<std::size_t>(length)};
}

CodePoint lastCodePoint(std::string_view text) noexcept {
    constexpr std::size_t longest = 4;
    for (std::size_t length = 1; length <= std::min(longest, text.size()); ++length) {
        const CodePoint found = firstCodePoint(text.substr(text.size() - length));
        if (found.length == length && (length > 1 || found.value != replacement)) {
            return found;
        }
    }
    return text.empty() ? CodePoint{} : CodePoint{replacement, 1};
}

UpperCase upperCase(char32_t codePoint) noexcept {
    const auto original = static_cast<utf8proc_int32_t>(codePoint);
    UpperCase upper;
    std::array<utf8proc_int32_t, 4> parts{original};
    upper.count = 1;
    // Case folding decomposes letters whose upper case is several; upper case itself must not be decomposed.
    if (codePoint >= 0x80 && utf8proc_category(original) != UTF8PROC_CATEGORY_LU) {
        int boundary = 0;
        const utf8proc_ssize_t count =
            utf8proc_decompose_char(original, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
                                    UTF8PROC_CASEFOLD, &boundary);
        upper.count = static_cast<std::size_t>(std::clamp<utf8proc_ssize_t>(count, 1, parts.size()));
    }
    for (std::size_t index = 0; index < upper.count; ++index) {
        upper.codePoints[index] = static_cast<char32_t>(utf8proc_toupper(parts[index]));
    }
    return upper;
}

bool CharacterCounter::take(char32_t codePoint) noexcept {
    const auto next = static_cast<utf8proc_int32_t>(codePoint);
    const bool begins = count_ == 0 || utf8proc_grapheme_break_stateful(previous_, next, &state_);
    previous_ = next;
    count_ += begins ? 1 : 0;
    return begins;
}

}  // namespace vorna::text
