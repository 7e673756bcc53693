// SPDX-License-Identifier: Apache-2.0
#pragma once

/// An RGB colour, and the parser of the colour strings in documents.

#include <vorna/base/Export.h>

#include <optional>
#include <string_view>

namespace vorna {

/// Components from 0 to 1, not clamped to that range. An alpha of 1 is opaque.
struct VORNA_EXPORT UIColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    constexpr UIColor(double redPart, double greenPart, double bluePart, double alphaPart) noexcept
        : red(redPart),
          green(greenPart),
          blue(bluePart),
          alpha(alphaPart) {}

    /// Parses a colour string: RRGGBB or RRGGBBAA in hexadecimal digits of either case, optionally with a
    /// leading "#" and white space around. Opaque black if the string cannot be parsed, including bytes that
    /// are not UTF-8.
    ///
    /// Length and digits are checked separately. After trimming and removing one "#", the text must have six
    /// or eight user-perceived characters; the number is taken from its leading digits, after white space and
    /// an optional "0x", and ends at the first character that is not a digit. So "12345G" is 0x012345 and
    /// "0x1234" is 0x001234. Without any digit, as in "0xZZZZ", there is no number.
    explicit UIColor(std::string_view hex) noexcept;

    /// As the constructor, but std::nullopt where that falls back to black. For tools that report this.
    static std::optional<UIColor> read(std::string_view hex) noexcept;

    friend constexpr bool operator==(const UIColor&, const UIColor&) = default;
};

}  // namespace vorna
