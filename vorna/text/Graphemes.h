// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Characters as a reader counts them, Unicode's extended grapheme clusters: a letter with its accents, a
/// flag, a family emoji and the sequence CR LF are one each.

#include <vorna/base/Export.h>

#include <cstddef>
#include <string_view>

namespace vorna::text {

/// Counts the characters. A byte that is not UTF-8 counts as one.
VORNA_EXPORT std::size_t characterCount(std::string_view text) noexcept;

/// Returns the text up to that many characters; all of it if it has no more.
VORNA_EXPORT std::string_view firstCharacters(std::string_view text, std::size_t count) noexcept;

}  // namespace vorna::text
