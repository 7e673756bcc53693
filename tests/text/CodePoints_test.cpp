// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/CodePoints.h>

#include <gtest/gtest.h>

#include <string>

namespace vorna::text {
namespace {

std::u32string upperCaseOf(char32_t codePoint) {
    const UpperCase upper = upperCase(codePoint);
    return {upper.begin(), upper.end()};
}

TEST(CodePoints, HaveAnUpperCaseOfOneOrMoreCodePoints) {
    EXPECT_EQ(upperCaseOf(U'a'), U"A");
    EXPECT_EQ(upperCaseOf(U'A'), U"A");
    EXPECT_EQ(upperCaseOf(U'7'), U"7");
    EXPECT_EQ(upperCaseOf(U'ş'), U"Ş");
    EXPECT_EQ(upperCaseOf(U'ı'), U"I");
    EXPECT_EQ(upperCaseOf(U'İ'), U"İ");
    EXPECT_EQ(upperCaseOf(U'ß'), U"SS");
    EXPECT_EQ(upperCaseOf(U'ẞ'), U"ẞ");
    EXPECT_EQ(upperCaseOf(U'ﬀ'), U"FF");
    EXPECT_EQ(upperCaseOf(U'ﬃ'), U"FFI");
    EXPECT_EQ(upperCaseOf(U'ΐ'), U"\u0399\u0308\u0301");
    EXPECT_EQ(upperCaseOf(U'ς'), U"Σ");
    EXPECT_EQ(upperCaseOf(U'字'), U"字");
    EXPECT_EQ(upperCaseOf(U'😀'), U"😀");
}

TEST(CodePoints, AreFoundAtBothEndsOfAText) {
    EXPECT_EQ(firstCodePoint("ğa").value, U'ğ');
    EXPECT_EQ(firstCodePoint("ğa").length, 2U);
    EXPECT_EQ(lastCodePoint("a😀").value, U'😀');
    EXPECT_EQ(lastCodePoint("a😀").length, 4U);
    EXPECT_EQ(lastCodePoint("a\uFFFD").length, 3U);
    EXPECT_EQ(firstCodePoint("").length, 0U);
    EXPECT_EQ(lastCodePoint("").length, 0U);
    EXPECT_EQ(firstCodePoint("\x80 ").value, U'\uFFFD');
    EXPECT_EQ(lastCodePoint(" \xE2\x80").value, U'\uFFFD');
    EXPECT_EQ(lastCodePoint(" \xE2\x80").length, 1U);
}

}  // namespace
}  // namespace vorna::text
