// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Lines and columns, as an editor shows them.

#include <vorna/base/Export.h>

#include <cstddef>
#include <string_view>

namespace vorna::json {

/// Both count from 1. A line ends with its line feed, whether or not a carriage return precedes it. Columns
/// count code points: a tab is one, and so is each byte that is not UTF-8.
struct Position {
    std::size_t line = 0;
    std::size_t column = 0;

    friend bool operator==(const Position&, const Position&) = default;
};

/// The position of a byte of the text; of the text's end if the offset is beyond it.
VORNA_EXPORT Position positionAt(std::string_view text, std::size_t offset) noexcept;

}  // namespace vorna::json
