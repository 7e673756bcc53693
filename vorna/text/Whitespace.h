// SPDX-License-Identifier: Apache-2.0
#pragma once

/// White space and line breaks by Unicode: the code points of the separator categories, U+0009 to U+000D and
/// U+0085.

#include <vorna/base/Export.h>

#include <string_view>

namespace vorna::text {

/// Returns the part of the text without white space at both ends. Bytes that are not UTF-8 are not white
/// space.
VORNA_EXPORT std::string_view trimmed(std::string_view text) noexcept;

/// True if the text is empty or all white space.
VORNA_EXPORT bool isBlank(std::string_view text) noexcept;

/// Whether the code point is white space or a line break.
VORNA_EXPORT bool isWhiteSpace(char32_t codePoint) noexcept;

}  // namespace vorna::text
