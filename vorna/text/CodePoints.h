// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A text taken apart into code points, and what they make up together.

#include <array>
#include <cstddef>
#include <cstdint>
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

/// The upper case of a code point, which may be several: "ß" is "SS" and the ligature "ﬀ" is "FF".
struct UpperCase {
    std::array<char32_t, 4> codePoints{};
    std::size_t count = 0;

    const char32_t* begin() const noexcept { return codePoints.data(); }

    const char32_t* end() const noexcept { return codePoints.data() + count; }
};

UpperCase upperCase(char32_t codePoint) noexcept;

/// Counts characters as a reader does, while a text goes by.
class CharacterCounter {
  public:
    /// The next code point. True when a character begins with it.
    bool take(char32_t codePoint) noexcept;

    std::size_t count() const noexcept { return count_; }

  private:
    std::size_t count_ = 0;
    std::int32_t previous_ = 0;
    std::int32_t state_ = 0;
};

}  // namespace vorna::text
