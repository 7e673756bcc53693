// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/NearestName.h>

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace vorna::lint {

namespace {

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool alike(char one, char other) {
    return lowered(one) == lowered(other);
}

/// A word with more mistakes than this is not recognised.
std::size_t mistakesAllowed(std::string_view word) {
    constexpr std::size_t lettersPerMistake = 3;
    return word.size() / lettersPerMistake;
}

}  // namespace

std::size_t editDistance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> beforeLast(other.size() + 1);
    std::vector<std::size_t> last(other.size() + 1);
    std::iota(last.begin(), last.end(), 0U);
    std::vector<std::size_t> current(other.size() + 1);
    for (std::size_t row = 1; row <= one.size(); ++row) {
        current[0] = row;
        for (std::size_t column = 1; column <= other.size(); ++column) {
            const bool same = alike(one[row - 1], other[column - 1]);
            current[column] = std::min({last[column] + 1, current[column - 1] + 1,
                                        last[column - 1] + static_cast<std::size_t>(same ? 0 : 1)});
            if (row > 1 && column > 1 && alike(one[row - 1], other[column - 2]) &&
                alike(one[row - 2], other[column - 1])) {
                current[column] = std::min(current[column], beforeLast[column - 2] + 1);
            }
        }
        std::swap(beforeLast, last);
        std::swap(last, current);
    }
    return last[other.size()];
}

std::optional<std::string_view> nearestName(std::string_view word, std::span<const std::string_view> names) {
    std::optional<std::string_view> nearest;
    std::size_t smallest = mistakesAllowed(word) + 1;
    for (const std::string_view name : names) {
        const std::size_t difference =
            name.size() > word.size() ? name.size() - word.size() : word.size() - name.size();
        if (difference >= smallest) {
            continue;
        }
        if (const std::size_t distance = editDistance(word, name); distance < smallest) {
            smallest = distance;
            nearest = name;
        }
    }
    return nearest;
}

}  // namespace vorna::lint
