// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace vorna::lint {

// How many letters must be put in, taken out, replaced or swapped with their neighbour to turn one word into
// the other; the case of ASCII letters does not count.
[[nodiscard]] std::size_t editDistance(std::string_view one, std::string_view other);

// The name that the word was probably meant to be: the one at the smallest distance, the first of several.
// Absent when none is nearer than a third of the word's length.
[[nodiscard]] std::optional<std::string_view> nearestName(std::string_view word,
                                                          std::span<const std::string_view> names);

}  // namespace vorna::lint
