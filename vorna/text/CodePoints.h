// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The code points of a text, and the characters that they form.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vorna::text {

struct CodePoint {
    char32_t value = 0;
    /// In bytes; 0 only if the text was empty.
    std::size_t length = 0;
};

/// Returns the first code point of a text. An invalid byte gives U+FFFD of length 1.
CodePoint firstCodePoint(std::string_view text) noexcept;

/// Returns the last code point of a text, likewise.
CodePoint lastCodePoint(std::string_view text) noexcept;

/// The upper case of a code point, which may be several code points: "SS" for "ß", "FF" for the ligature "ﬀ".
struct UpperCase {
    std::array<char32_t, 4> codePoints{};
    std::size_t count = 0;

    const char32_t* begin() const noexcept { return codePoints.data(); }

    const char32_t* end() const noexcept { return codePoints.data() + count; }
};

UpperCase upperCase(char32_t codePoint) noexcept;

/// Counts characters as a reader does, one code point at a time.
class CharacterCounter {
  public:
    /// Adds the next code point. True if a character begins with it.
    bool take(char32_t codePoint) noexcept;

    std::size_t count() const noexcept { return count_; }

  private:
    std::size_t count_ = 0;
    std::int32_t previous_ = 0;
    std::int32_t state_ = 0;
};

}  // namespace vorna::text
