// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/NearestName.h>

#include <gtest/gtest.h>

#include <array>

namespace vorna::lint {
namespace {

TEST(EditDistance, CountsInsertionsDeletionsReplacementsAndSwaps) {
    EXPECT_EQ(editDistance("", ""), 0U);
    EXPECT_EQ(editDistance("heading", "heading"), 0U);
    EXPECT_EQ(editDistance("heading", ""), 7U);
    EXPECT_EQ(editDistance("", "media"), 5U);
    EXPECT_EQ(editDistance("headng", "heading"), 1U);
    EXPECT_EQ(editDistance("headinng", "heading"), 1U);
    EXPECT_EQ(editDistance("heating", "heading"), 1U);
    EXPECT_EQ(editDistance("haeding", "heading"), 1U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(EditDistance, IgnoresCase) {
    EXPECT_EQ(editDistance("FOOTNOTE", "footNote"), 0U);
}

TEST(NearestName, HasTheFewestDifferences) {
    constexpr std::array<std::string_view, 4> names{"heading", "headingColor", "media", "details"};
    EXPECT_EQ(nearestName("headingColour", names), "headingColor");
    EXPECT_EQ(nearestName("hedaing", names), "heading");
    EXPECT_EQ(nearestName("MEDIA", names), "media");
    EXPECT_EQ(nearestName("detail", names), "details");
}

TEST(NearestName, IsAbsentIfNoneIsClose) {
    constexpr std::array<std::string_view, 2> names{"heading", "media"};
    EXPECT_EQ(nearestName("campaign", names), std::nullopt);
    EXPECT_EQ(nearestName("x", names), std::nullopt);
    EXPECT_EQ(nearestName("", names), std::nullopt);
    EXPECT_EQ(nearestName("media", {}), std::nullopt);
}

TEST(NearestName, IsTheFirstOfEquallyCloseOnes) {
    constexpr std::array<std::string_view, 2> names{"actionButtonColor1", "actionButtonColor2"};
    EXPECT_EQ(nearestName("actionButtonColor", names), "actionButtonColor1");
}

}  // namespace
}  // namespace vorna::lint
