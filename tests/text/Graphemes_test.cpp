// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/Graphemes.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vorna::text {
namespace {

struct CountCase {
    const char* name;
    std::string_view text;
    std::size_t characters;
    std::string_view firstTwo;
};

class Characters : public testing::TestWithParam<CountCase> {};

TEST_P(Characters, AreCountedAsAReaderCounts) {
    EXPECT_EQ(characterCount(GetParam().text), GetParam().characters);
    EXPECT_EQ(firstCharacters(GetParam().text, 2), GetParam().firstTwo);
    EXPECT_EQ(firstCharacters(GetParam().text, GetParam().characters), GetParam().text);
    EXPECT_EQ(firstCharacters(GetParam().text, 0), "");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Characters,
    testing::Values(CountCase{"Empty", "", 0, ""}, CountCase{"Ascii", "abc", 3, "ab"},
                    CountCase{"Turkish", "ığş", 3, "ığ"},
                    CountCase{"CombiningMarks", "e\u0301e\u0301\u0323x", 3, "e\u0301e\u0301\u0323"},
                    CountCase{"MarkAtTheBeginning", "\u0301ab", 3, "\u0301a"},
                    CountCase{"LineBreakOfTwo", "\r\na\n", 3, "\r\na"},
                    CountCase{"LineBreakTurnedAround", "\n\ra", 3, "\n\r"},
                    CountCase{"Flags", "🇹🇷🇩🇪🇫🇷", 3, "🇹🇷🇩🇪"},
                    CountCase{"Family", "👩‍👩‍👧👍🏽x", 3, "👩‍👩‍👧👍🏽"},
                    CountCase{"Hangul", "\u1112\u1161\u11AB글a", 3, "\u1112\u1161\u11AB글"},
                    CountCase{"NotUtf8", "a\xFF\xFE", 3, "a\xFF"},
                    CountCase{"CutOff", "a\xF0\x9F", 3, "a\xF0"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(Characters, AreTheWholeTextIfItHasNoMore) {
    EXPECT_EQ(firstCharacters("ab", 3), "ab");
    EXPECT_EQ(firstCharacters("", 3), "");
}

TEST(Characters, MayHaveVeryManyMarks) {
    std::string text = "a";
    for (int count = 0; count < 100'000; ++count) {
        text += "\u0301";
    }
    EXPECT_EQ(characterCount(text), 1U);
    EXPECT_EQ(firstCharacters(text + "b", 1), text);
}

}  // namespace
}  // namespace vorna::text
