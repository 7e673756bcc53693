// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Date.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vorna {
namespace {

TEST(WholeSeconds, AreTruncatedTowardsZero) {
    EXPECT_EQ(wholeSeconds({1'704'067'200.9}), 1'704'067'200U);
    EXPECT_EQ(wholeSeconds({0.999}), 0U);
    EXPECT_EQ(wholeSeconds({-0.999}), 0U);
    EXPECT_EQ(wholeSeconds({18'446'744'073'709'549'568.0}), 18'446'744'073'709'549'568U);
}

TEST(WholeMilliseconds, AreTruncatedTowardsZero) {
    EXPECT_EQ(wholeMilliseconds({0.001}), 1U);
    EXPECT_EQ(wholeMilliseconds({1.9999}), 1999U);
}

class ImpossibleDate : public testing::TestWithParam<double> {};

TEST_P(ImpossibleDate, IsFatalWithAReason) {
    EXPECT_DEATH(wholeSeconds({GetParam()}), "Fatal error: the clock returned a date outside the range");
}

INSTANTIATE_TEST_SUITE_P(Dates, ImpossibleDate,
                         testing::Values(-1.0, -1e10, 18446744073709551616.0, std::nan(""),
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity()));

}  // namespace
}  // namespace vorna
