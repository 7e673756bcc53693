// SPDX-License-Identifier: Apache-2.0
#include <tools/common/Number.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace vorna::tools {
namespace {

TEST(ParseNumber, AcceptsNumbersOfItsType) {
    EXPECT_EQ(parseNumber<int>("-12"), -12);
    EXPECT_EQ(parseNumber<std::uint64_t>("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(parseNumber<double>("1.5"), 1.5);
}

TEST(ParseNumber, RejectsEverythingElse) {
    for (const char* text : {"", " 1", "1 ", "+1", "1x", "0x1", "-1", "18446744073709551616", "1.5"}) {
        EXPECT_EQ(parseNumber<std::uint64_t>(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace vorna::tools
