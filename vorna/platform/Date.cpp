// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Date.h>

#include <vorna/platform/FatalError.h>

#include <cmath>

namespace vorna {

namespace {

std::uint64_t truncated(double units) {
    constexpr double twoToThe64 = 18446744073709551616.0;
    if (!std::isfinite(units) || units <= -1.0 || units >= twoToThe64) {
        fatalError("the clock returned a date outside the range of 64-bit unsigned time");
    }
    return static_cast<std::uint64_t>(units < 0 ? 0.0 : units);
}

}  // namespace

std::uint64_t wholeSeconds(Date date) {
    return truncated(date.secondsSince1970);
}

std::uint64_t wholeMilliseconds(Date date) {
    return truncated(date.secondsSince1970 * 1000.0);
}

}  // namespace vorna
