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

}  // namespace vorna::text
