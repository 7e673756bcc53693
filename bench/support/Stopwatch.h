// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Time measurement.

#include <bench/support/Series.h>

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace vorna::bench {

/// Monotonic time, shared by all processes of this machine.
inline std::int64_t nanosecondsNow() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Keeps the compiler from optimising the value away.
template <class Value>
void used(const Value& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

/// Duration of one call.
template <class Call>
std::int64_t nanosecondsOf(Call&& call) {
    const std::int64_t began = nanosecondsNow();
    call();
    return nanosecondsNow() - began;
}

/// The overhead of reading the clock: the median of many empty calls.
inline double nanosecondsOfTheClock() {
    constexpr std::size_t enough = 100'000;
    Series series(enough);
    for (std::size_t count = 0; count < enough; ++count) {
        series.add(static_cast<double>(nanosecondsOf([] {})));
    }
    return series.median();
}

}  // namespace vorna::bench
