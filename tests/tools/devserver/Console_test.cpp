// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Console.h>

#include <gtest/gtest.h>

namespace vorna::devserver {
namespace {

TEST(PrintableText, KeepsOrdinaryTextInAnyLanguage) {
    EXPECT_EQ(printable("paywall_shown Größe 価格 🙂"), "paywall_shown Größe 価格 🙂");
}

TEST(PrintableText, EscapesControlCharacters) {
    EXPECT_EQ(printable("a\nb\rc\td"), "a\\nb\\rc\\td");
    EXPECT_EQ(printable("\x1b[2J"), "\\x1b[2J");
    EXPECT_EQ(printable(std::string_view("\0\x7f", 2)), "\\x00\\x7f");
    EXPECT_EQ(printable("\xc2\x9b"
                        "2J"),
              "\\xc2\\x9b2J");
}

TEST(PrintableText, EscapesTheBackslashItself) {
    EXPECT_EQ(printable("\\n"), "\\\\n");
}

TEST(PrintableText, IsTruncatedBetweenCharactersWithItsLength) {
    EXPECT_EQ(printable("abcdef", 6), "abcdef");
    EXPECT_EQ(printable("abcdef", 4), "abcd... (6 bytes)");
    EXPECT_EQ(printable("abcé", 4), "abc... (5 bytes)");
}

}  // namespace
}  // namespace vorna::devserver
