#pragma once

/// A text taken apart into code points.

#include <cstddef>
#include <string_view>

namespace vorna::text {

struct CodePoint {
    char32_t value = 0;
    /// Bytes that it takes; 0 only for the one before the beginning of an empty text.
    std::size_t length = 0;
};

/// The code point that a text begins with. A byte that belongs to none gives U+FFFD of length 1.
CodePoint firstCodePoint(std::string_view text) noexcept;

/// The code point that a text ends with, likewise.
CodePoint lastCodePoint(std::string_view text) noexcept;

}  // namespace vorna::text
