// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Characters as a reader counts them, Unicode's extended grapheme clusters: a letter with its accents, a
/// flag, a family of emoji and the pair of carriage return and line feed are one each.

#include <vorna/base/Export.h>

#include <cstddef>
#include <string_view>

namespace vorna::text {

/// A byte that is not UTF-8 counts as one.
VORNA_EXPORT std::size_t characterCount(std::string_view text) noexcept;

/// The part of the text that its first characters make up; all of it when it has no more than that.
VORNA_EXPORT std::string_view firstCharacters(std::string_view text, std::size_t count) noexcept;

}  // namespace vorna::text
