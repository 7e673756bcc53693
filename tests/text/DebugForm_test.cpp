// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/DebugForm.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vorna::text {
namespace {

using namespace std::string_view_literals;

TEST(DebugForm, QuotesTextsAndSeparatesThem) {
    EXPECT_EQ(debugForm(std::vector<std::string>{}), "[]");
    EXPECT_EQ(debugForm(std::vector<std::string>{"media"}), R"(["media"])");
    EXPECT_EQ(debugForm(std::vector<std::string>{"heading", "", "paidProducts (boş)"}),
              "[\"heading\", \"\", \"paidProducts (boş)\"]");
}

TEST(DebugForm, EscapesCharactersThatWouldEndTheTextOrTheLine) {
    EXPECT_EQ(debugForm("a\"b\\c'/"sv), R"("a\"b\\c'/")");
    EXPECT_EQ(debugForm("\0\n\r\t\x1B\x7F"sv), R"("\0\n\r\t\u{1B}\u{7F}")");
    EXPECT_EQ(debugForm("ğ😀"sv), "\"ğ😀\"");
}

}  // namespace
}  // namespace vorna::text
