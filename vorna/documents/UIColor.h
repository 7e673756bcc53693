// SPDX-License-Identifier: Apache-2.0
#pragma once

/// An RGB colour, and the reader of the colour strings in documents.

#include <vorna/base/Export.h>

#include <optional>
#include <string_view>

namespace vorna {

/// Every component from 0 to 1; what is given is not cut to that range. An alpha of 1 is opaque.
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

    /// Reads a colour string: RRGGBB or RRGGBBAA in hexadecimal digits of either case, with or without a "#"
    /// before and white space around. Opaque black for whatever cannot be read, including bytes that are not
    /// UTF-8.
    ///
    /// How many characters there are and which digits they begin with are two questions. After trimming and
    /// after the one "#", the text must have six or eight characters as a reader counts them; the number is
    /// taken from the digits at its beginning, over white space and an optional "0x", and ends at the first
    /// character that is no digit. So "12345G" is 0x012345 and "0x1234" is 0x001234. Without one digit, as in
    /// "0xZZZZ", there is no number.
    explicit UIColor(std::string_view hex) noexcept;

    /// As above, but absent where the text falls back to black because it cannot be read. For whoever tells
    /// an author about it.
    static std::optional<UIColor> read(std::string_view hex) noexcept;

    friend constexpr bool operator==(const UIColor&, const UIColor&) = default;
};

}  // namespace vorna
