// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/Graphemes.h>

#include <vorna/text/CodePoints.h>

#include <limits>

namespace vorna::text {

namespace {

struct Counted {
    std::size_t characters = 0;
    std::size_t bytes = 0;
};

/// Counts characters until the end of the text or the limit.
Counted counted(std::string_view text, std::size_t limit) noexcept {
    Counted sum;
    CharacterCounter counter;
    while (sum.bytes < text.size()) {
        const CodePoint next = firstCodePoint(text.substr(sum.bytes));
        if (counter.take(next.value) && counter.count() > limit) {
            break;
        }
        sum.characters = counter.count();
        sum.bytes += next.length;
    }
    return sum;
}

}  // namespace

std::size_t characterCount(std::string_view text) noexcept {
    return counted(text, std::numeric_limits<std::size_t>::max()).characters;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) noexcept {
    return text.substr(0, counted(text, count).bytes);
}

}  // namespace vorna::text
