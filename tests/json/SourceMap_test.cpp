// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/SourceMap.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::json {
namespace {

using testing::ElementsAre;

SourceMap mapOf(std::string_view text) {
    return SourceMap::read(text).value();
}

std::vector<std::string> pathsOf(std::string_view text) {
    const SourceMap map = mapOf(text);
    std::vector<std::string> paths;
    for (std::size_t entry = 0; entry < map.entries().size(); ++entry) {
        paths.push_back(map.path(entry).text());
    }
    return paths;
}

TEST(SourceMap, ListsEveryMemberAndElementInTheOrderOfTheText) {
    EXPECT_THAT(pathsOf(R"( {"a": [1, {"b": null, "c": {}}, []], "d": "x"} )"),
                ElementsAre("", "a", "a[0]", "a[1]", "a[1].b", "a[1].c", "a[2]", "d"));
    EXPECT_THAT(pathsOf(R"([[[7]],[]])"), ElementsAre("", "[0]", "[0][0]", "[0][0][0]", "[1]"));
    EXPECT_THAT(pathsOf("7"), ElementsAre(""));
    EXPECT_THAT(pathsOf(" {} "), ElementsAre(""));
}

TEST(SourceMap, QuotesKeysThatLookLikePaths) {
    EXPECT_THAT(pathsOf(R"({"a.b":1,"a":{"b":2},"c[0]":3,"":4,"q\"\n":5,"x y":6,"a-b_$1":7})"),
                ElementsAre("", R"(["a.b"])", "a", "a.b", R"(["c[0]"])", R"([""])", R"(["q\"\n"])",
                            R"(["x y"])", "a-b_$1"));
}

TEST(SourceMap, ReportsKindsAndTexts) {
    const SourceMap map =
        mapOf("{\"a\":null,\"b\":true , \"c\":-1.5e3\n,\"d\":\"\\\"}\",\"e\":[ ],\"f\":{ \"g\":1 }}");
    std::vector<Kind> kinds;
    std::vector<std::string> texts;
    for (std::size_t entry = 1; entry < map.entries().size(); ++entry) {
        kinds.push_back(map.entries()[entry].kind);
        texts.emplace_back(map.valueText(entry));
    }
    EXPECT_THAT(kinds, ElementsAre(Kind::null, Kind::boolean, Kind::number, Kind::string, Kind::array,
                                   Kind::object, Kind::number));
    EXPECT_THAT(texts, ElementsAre("null", "true", "-1.5e3", "\"\\\"}\"", "[ ]", "{ \"g\":1 }", "1"));
    EXPECT_EQ(map.valueText(0), map.text());
}

TEST(SourceMap, LocatesKeysAndValues) {
    const SourceMap map = mapOf("{\r\n  \"ğ\": \"çay\", \"b\":\n\t7,\n\"c\":[\n1]}");
    const auto entryAt = [&](const Path& path) { return map.find(path).value(); };
    EXPECT_EQ(map.position(0), (Position{1, 1}));
    EXPECT_EQ(map.position(entryAt({"ğ"})), (Position{2, 3}));
    EXPECT_EQ(map.valuePosition(entryAt({"ğ"})), (Position{2, 8}));
    EXPECT_EQ(map.position(entryAt({"b"})), (Position{2, 15}));
    EXPECT_EQ(map.valuePosition(entryAt({"b"})), (Position{3, 2}));
    EXPECT_EQ(map.position(entryAt({"c", 0U})), (Position{5, 1}));
    EXPECT_EQ(map.positionAt(map.text().size()), (Position{5, 4}));
}

TEST(SourceMap, MarksDuplicateKeys) {
    const SourceMap map = mapOf(R"({"a":1,"b":{"a":2},"\u0061":3,"a":4})");
    std::vector<bool> repeats;
    std::vector<bool> superseded;
    for (const SourceMap::Entry& entry : map.entries()) {
        repeats.push_back(entry.repeatsKey);
        superseded.push_back(entry.isSuperseded);
    }
    EXPECT_THAT(repeats, ElementsAre(false, false, false, false, true, true));
    EXPECT_THAT(superseded, ElementsAre(false, true, false, false, true, false));
    EXPECT_EQ(map.key(4), "a");
    EXPECT_EQ(map.valueText(map.find({"a"}).value()), "4");
    EXPECT_EQ(map.valueText(map.find({"b", "a"}).value()), "2");
}

TEST(SourceMap, ReportsParents) {
    const SourceMap map = mapOf(R"({"a":[{"b":1}],"c":2})");
    EXPECT_EQ(map.entries()[0].parent, SourceMap::none);
    EXPECT_EQ(map.entries()[3].parent, 2U);
    EXPECT_EQ(map.entries()[2].parent, 1U);
    EXPECT_EQ(map.entries()[4].parent, 0U);
    EXPECT_EQ(map.entries()[4].index, 1U);
    EXPECT_FALSE(map.entries()[2].isMember());
    EXPECT_TRUE(map.entries()[3].isMember());
    EXPECT_EQ(map.key(2), "");
}

TEST(SourceMap, FindsNothingThatTheTextLacks) {
    const SourceMap map = mapOf(R"({"ab":[1],"a":{"c":2}})");
    EXPECT_EQ(map.find({}), 0U);
    EXPECT_EQ(map.find({"a"}), 3U);
    EXPECT_EQ(map.find({"ab", 0U}), 2U);
    for (const Path& path : {Path{"abc"}, Path{"ab", 1U}, Path{"ab", "c"}, Path{"b"}, Path{"a", "c", "d"},
                             Path{0U}, Path{"a", 0U}, Path{"ab[0]"}, Path{"a.c"}}) {
        EXPECT_FALSE(map.find(path).has_value()) << path.text();
    }
}

TEST(SourceMap, FindsEveryPathThatItReports) {
    const std::string_view text = R"({"a.b":[{"c":1},[2,[3]]],"a":{"b":4,"b[0]":{"":5}},"\\":6})";
    const SourceMap map = mapOf(text);
    for (std::size_t entry = 0; entry < map.entries().size(); ++entry) {
        EXPECT_EQ(map.find(map.path(entry)), entry) << map.path(entry).text();
    }
}

TEST(SourceMap, LocatesInvalidJson) {
    const auto error = SourceMap::read("{\n \"ğ\": x}").error();
    EXPECT_EQ(error, (DecodingError{9, Path{}, "JSON", DecodingError::Malformed{"syntax error"}}));
    for (const char* const text :
         {"", "{", "[1,]", "{\"a\":1,}", "{} 1", "\xEF\xBB\xBF{}", "\"\xFF\"", "nul"}) {
        EXPECT_FALSE(SourceMap::read(text)) << text;
    }
}

TEST(SourceMap, HandlesDeepAndLargeTexts) {
    const std::string deep = std::string(512, '[') + std::string(512, ']');
    EXPECT_EQ(mapOf(deep).entries().size(), 512U);
    EXPECT_FALSE(SourceMap::read("[" + deep + "]"));
    std::string text = "[0";
    for (int index = 1; index < 300'000; ++index) {
        text += ",\n{\"a\":\"b\"}";
    }
    text += "]";
    const auto began = std::chrono::steady_clock::now();
    const SourceMap map = mapOf(text);
    ASSERT_EQ(map.entries().size(), 600'000U);
    EXPECT_EQ(map.position(599'999), (Position{300'000, 2}));
    EXPECT_EQ(map.path(599'999), (Path{299'999U, "a"}));
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(10));
}

TEST(Position, CountsCodePointsFromOne) {
    const std::string_view text = "ab\r\nğ😀e\u0301\xFFx";
    EXPECT_EQ(positionAt(text, 0), (Position{1, 1}));
    EXPECT_EQ(positionAt(text, 3), (Position{1, 4}));
    EXPECT_EQ(positionAt(text, 4), (Position{2, 1}));
    EXPECT_EQ(positionAt(text, 6), (Position{2, 2}));
    EXPECT_EQ(positionAt(text, 10), (Position{2, 3}));
    EXPECT_EQ(positionAt(text, text.size()), (Position{2, 7}));
    EXPECT_EQ(positionAt(text, 1000), (Position{2, 7}));
    EXPECT_EQ(positionAt("", 0), (Position{1, 1}));
}

}  // namespace
}  // namespace vorna::json
