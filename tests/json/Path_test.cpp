// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Path.h>

#include <gtest/gtest.h>

#include <string>

namespace vorna::json {
namespace {

TEST(JsonPath, IsEmptyForTheTop) {
    EXPECT_TRUE(Path().empty());
    EXPECT_EQ(Path().text(), "");
}

TEST(JsonPath, SeparatesKeysByDotsAndBracketsIndexes) {
    EXPECT_EQ((Path{"paidProducts", 1U, "price"}.text()), "paidProducts[1].price");
    EXPECT_EQ((Path{0U, 12U, "a", "b"}.text()), "[0][12].a.b");
}

TEST(JsonPath, QuotesKeysWithOtherCharacters) {
    EXPECT_EQ((Path{"a.b", 0U, "c"}.text()), R"(["a.b"][0].c)");
    EXPECT_EQ((Path{"a", ""}.text()), R"(a[""])");
    EXPECT_EQ(Path{"1"}.text(), "1");
    EXPECT_EQ(Path{"[1]"}.text(), R"(["[1]"])");
    EXPECT_EQ(Path{"ü"}.text(), R"(["ü"])");
}

TEST(JsonPath, StaysOnOneLineForAnyKey) {
    EXPECT_EQ(Path{"a\n\"\\\x01"}.text(), R"(["a\n\"\\\u0001"])");
    EXPECT_EQ((Path{"\x7F\x7F", 2U}.text()), R"(["\u007F\u007F"][2])");
}

TEST(JsonPath, GrowsAtBothEnds) {
    Path path;
    path.prepend("price");
    path.prepend(std::size_t{1});
    path.prepend("paidProducts");
    EXPECT_EQ(path, (Path{"paidProducts", 1U, "price"}));
    path.removeLast();
    path.append("title");
    path.append(std::size_t{3});
    EXPECT_EQ(path, (Path{"paidProducts", 1U, "title", 3U}));
}

TEST(JsonPath, DistinguishesAKeyFromAnIndex) {
    EXPECT_NE(Path{"1"}, Path{1U});
    EXPECT_NE((Path{"a", "b"}), Path{"a.b"});
    EXPECT_NE((Path{"a", "b"}.text()), Path{"a.b"}.text());
}

}  // namespace
}  // namespace vorna::json
