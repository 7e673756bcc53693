// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Time as the measurements read it.

#include <bench/support/Series.h>

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace vorna::bench {

/// Of the clock that never jumps; the same for all processes of this machine.
inline std::int64_t nanosecondsNow() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Makes the compiler believe that somebody looks at the value.
template <class Value>
void used(const Value& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

/// What a call takes, one call at a time.
template <class Call>
std::int64_t nanosecondsOf(Call&& call) {
    const std::int64_t began = nanosecondsNow();
    call();
    return nanosecondsNow() - began;
}

/// What looking at the clock itself adds to each such time: the median of many calls of nothing.
inline double nanosecondsOfTheClock() {
    constexpr std::size_t enough = 100'000;
    Series series(enough);
    for (std::size_t count = 0; count < enough; ++count) {
        series.add(static_cast<double>(nanosecondsOf([] {})));
    }
    return series.median();
}

}  // namespace vorna::bench
