// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/SystemClock.h>

#include <gtest/gtest.h>

#include <ctime>

namespace vorna {
namespace {

TEST(SystemClock, ReturnsTheTimeOfTheSystem) {
    const std::time_t before = std::time(nullptr);
    const Date now = SystemClock().now();
    const std::time_t after = std::time(nullptr);
    // time() may lag by a timer tick.
    EXPECT_GE(now.secondsSince1970, static_cast<double>(before));
    EXPECT_LE(now.secondsSince1970, static_cast<double>(after) + 1.0);
}

TEST(SystemClock, ReturnsFractionsOfASecond) {
    const SystemClock clock;
    int fractions = 0;
    for (int reading = 0; reading < 1000; ++reading) {
        const double seconds = clock.now().secondsSince1970;
        fractions += seconds != static_cast<double>(static_cast<std::int64_t>(seconds)) ? 1 : 0;
    }
    EXPECT_GT(fractions, 900);
}

}  // namespace
}  // namespace vorna
