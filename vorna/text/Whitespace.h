#pragma once

/// White space and line breaks at the ends of a text, by Unicode: the code points of the categories for
/// separators, U+0009 to U+000D and U+0085.

#include <string_view>

namespace vorna::text {

/// A part of the given text, without the white space and line breaks at both ends. Bytes that are not UTF-8
/// are not white space.
[[gnu::visibility("default")]] std::string_view trimmed(std::string_view text) noexcept;

/// True when nothing is left after trimming.
[[gnu::visibility("default")]] bool isBlank(std::string_view text) noexcept;

/// Whether a code point is white space or a line break.
[[gnu::visibility("default")]] bool isWhiteSpace(char32_t codePoint) noexcept;

}  // namespace vorna::text
