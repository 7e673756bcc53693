// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Points in time, and their conversion to the whole units used in records. Dates come from a Clock; nothing
/// else in the library reads the system's time.

#include <cstdint>

namespace vorna {

/// Seconds since 1970-01-01 00:00:00 UTC, with fraction. A plain value.
struct Date {
    double secondsSince1970 = 0;

    friend constexpr bool operator==(const Date&, const Date&) = default;
};

/// Returns seconds since 1970, truncated towards zero. A date that is not finite, is -1 second or less, or
/// does not fit into 64 bits can only come from a broken clock and is fatal.
std::uint64_t wholeSeconds(Date date);

/// Returns milliseconds since 1970, by the same rules.
std::uint64_t wholeMilliseconds(Date date);

}  // namespace vorna
