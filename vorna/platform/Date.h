// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Moments in time as the whole library passes them about, and the one conversion to whole units that
/// records use. Dates come from a Clock; nothing else in the library asks the system for the time.

#include <cstdint>

namespace vorna {

/// A moment: seconds since 1970-01-01 00:00:00 UTC with their fraction. A plain value.
struct Date {
    double secondsSince1970 = 0;

    friend constexpr bool operator==(const Date&, const Date&) = default;
};

/// Seconds since 1970, truncated toward zero. A date that is not finite, is -1 second or less, or does not
/// fit into 64 bits comes from a broken clock and is fatal.
std::uint64_t wholeSeconds(Date date);

/// Milliseconds since 1970, truncated toward zero, under the same rule.
std::uint64_t wholeMilliseconds(Date date);

}  // namespace vorna
