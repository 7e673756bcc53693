// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/Whitespace.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

namespace vorna::text {
namespace {

using namespace std::string_view_literals;

TEST(Whitespace, IsTheseCodePointsAndNoOthers) {
    const std::set<char32_t> expected = {0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,
                                         0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
                                         0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x2028,
                                         0x2029, 0x202F, 0x205F, 0x3000};
    std::set<char32_t> found;
    for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        if (isWhiteSpace(codePoint)) {
            found.insert(codePoint);
        }
    }
    EXPECT_EQ(found, expected);
}

TEST(Whitespace, IsTrimmedAtBothEndsAndKeptInside) {
    EXPECT_EQ(trimmed(" \t\r\n\u00A0\u3000a \n b\u2029\u0020"), "a \n b");
    EXPECT_EQ(trimmed("a"), "a");
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed("\u2028 \u2003"), "");
    EXPECT_EQ(trimmed("ğ \u1680"), "ğ");
}

TEST(Whitespace, ExcludesCharactersThatOnlyLookLikeIt) {
    for (const char* const text :
         {"\u200B", "\u180E", "\uFEFF", "\u2060", "\u00AD", "\x1C", "\x1F", "\x7F"}) {
        EXPECT_FALSE(isBlank(text));
        EXPECT_EQ(trimmed(text), text);
    }
    EXPECT_FALSE(isBlank("\0"sv));
}

TEST(Whitespace, ExcludesInvalidBytes) {
    EXPECT_EQ(trimmed(" \x85 "), "\x85") << "a lone byte";
    EXPECT_EQ(trimmed("\xC2"), "\xC2");
    EXPECT_EQ(trimmed("\x80\xA8\xE2\x80 "), "\x80\xA8\xE2\x80");
    EXPECT_EQ(trimmed("\xE2\x80\xA8\xA8"), "\xA8");
}

TEST(Whitespace, AloneIsBlank) {
    EXPECT_TRUE(isBlank(""));
    EXPECT_TRUE(isBlank("   "));
    EXPECT_TRUE(isBlank("\n\u0020\u2029"));
    EXPECT_FALSE(isBlank(" . "));
}

}  // namespace
}  // namespace vorna::text
