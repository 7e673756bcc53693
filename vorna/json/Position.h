// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Where in a text something stands, as an editor shows it.

#include <vorna/base/Export.h>

#include <cstddef>
#include <string_view>

namespace vorna::json {

/// Both count from 1; 0 stands for an unknown place. A line ends with its line feed, whether or not a
/// carriage return stands before that. Columns count code points, so that a letter with an accent of its own
/// counts as one and an emoji mostly as one; a tab counts as one, and so does each byte that is not UTF-8.
struct Position {
    std::size_t line = 0;
    std::size_t column = 0;

    friend bool operator==(const Position&, const Position&) = default;
};

/// The position of a byte of the text; of the end of the text when the offset lies behind it.
VORNA_EXPORT Position positionAt(std::string_view text, std::size_t offset) noexcept;

}  // namespace vorna::json
