// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Contrast.h>

#include <gtest/gtest.h>

#include <array>

namespace vorna::lint {
namespace {

double between(const char* text, const char* ground) {
    return contrast(UIColor(text), std::array{UIColor(ground)});
}

TEST(Contrast, FollowsTheGuidelines) {
    // Known pairs, to two digits.
    EXPECT_NEAR(between("#000000", "#FFFFFF"), 21.0, 0.005);
    EXPECT_NEAR(between("#FFFFFF", "#FFFFFF"), 1.0, 0.005);
    EXPECT_NEAR(between("#777777", "#FFFFFF"), 4.48, 0.005);
    EXPECT_NEAR(between("#767676", "#FFFFFF"), 4.54, 0.005);
    EXPECT_NEAR(between("#949494", "#FFFFFF"), 3.03, 0.005);
    EXPECT_NEAR(between("#FF0000", "#FFFFFF"), 4.00, 0.005);
    EXPECT_NEAR(between("#0000FF", "#FFFFFF"), 8.59, 0.005);
    EXPECT_NEAR(between("#FFFF00", "#FFFFFF"), 1.07, 0.005);
}

TEST(Contrast, IsSymmetric) {
    EXPECT_DOUBLE_EQ(between("#123456", "#FEDCBA"), between("#FEDCBA", "#123456"));
}

TEST(Contrast, BlendsTranslucentTextWithItsBackground) {
    EXPECT_NEAR(between("#00000000", "#FFFFFF"), 1.0, 0.005);
    // Black at 128/255 over white is grey 127.
    EXPECT_NEAR(between("#00000080", "#FFFFFF"), between("#7F7F7F", "#FFFFFF"), 0.005);
}

TEST(Contrast, BlendsLayers) {
    const std::array layers{UIColor("#FFFFFF"), UIColor("#00000080"), UIColor("#FF000000")};
    EXPECT_NEAR(contrast(UIColor("#FFFFFF"), layers), between("#FFFFFF", "#7F7F7F"), 0.005);
}

TEST(Contrast, AssumesTheBetterOfBlackAndWhiteBelowTranslucentLayers) {
    EXPECT_NEAR(between("#FFFFFF", "#00000000"), 21.0, 0.005);
    EXPECT_NEAR(between("#000000", "#FFFFFF00"), 21.0, 0.005);
    EXPECT_NEAR(between("#808080", "#00000000"), 5.32, 0.005) << "grey on black, and not on white";
}

}  // namespace
}  // namespace vorna::lint
