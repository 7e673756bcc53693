// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Suggestions for misspelt names.

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace vorna::lint {

/// The number of letters to insert, delete, replace or swap with their neighbour to turn one word into the
/// other, regardless of the case of ASCII letters.
[[nodiscard]] std::size_t editDistance(std::string_view one, std::string_view other);

/// The name that was probably meant: the one at the smallest distance, the first of several. std::nullopt if
/// all are further away than a third of the word's length.
[[nodiscard]] std::optional<std::string_view> nearestName(std::string_view word,
                                                          std::span<const std::string_view> names);

}  // namespace vorna::lint
