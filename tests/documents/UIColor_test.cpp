// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/UIColor.h>

#include <tests/documents/support/Documents.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace vorna {
namespace {

using namespace std::string_view_literals;

constexpr UIColor black(0, 0, 0, 1);

UIColor ofBytes(int red, int green, int blue, int alpha = 255) {
    return {red / 255.0, green / 255.0, blue / 255.0, alpha / 255.0};
}

struct ColourCase {
    const char* name;
    std::string_view text;
    /// std::nullopt if the text cannot be parsed.
    std::optional<UIColor> colour;
};

class ColourString : public testing::TestWithParam<ColourCase> {};

TEST_P(ColourString, IsParsedOrBlack) {
    EXPECT_EQ(UIColor::read(GetParam().text), GetParam().colour);
    EXPECT_EQ(UIColor(GetParam().text), GetParam().colour.value_or(black));
}

INSTANTIATE_TEST_SUITE_P(WellFormed, ColourString,
                         testing::Values(ColourCase{"Six", "FF0000", ofBytes(255, 0, 0)},
                                         ColourCase{"SixBehindHash", "#ff0000", ofBytes(255, 0, 0)},
                                         ColourCase{"SpacesAndLineBreakAround", " \tff0000 \n",
                                                    ofBytes(255, 0, 0)},
                                         ColourCase{"Eight", "11223344", ofBytes(17, 34, 51, 68)},
                                         ColourCase{"EightOpaque", "#FF0000FF", ofBytes(255, 0, 0)},
                                         ColourCase{"EightHalf", "#FF000080", ofBytes(255, 0, 0, 128)},
                                         ColourCase{"EightTransparent", "#00000000", ofBytes(0, 0, 0, 0)},
                                         ColourCase{"MixedCase", "#aBcDeF", ofBytes(0xAB, 0xCD, 0xEF)},
                                         ColourCase{"Black", "#000000", black},
                                         ColourCase{"White", "#ffffff", ofBytes(255, 255, 255)},
                                         ColourCase{"EveryChannelItsOwn", "#010203", ofBytes(1, 2, 3)}),
                         [](const auto& testCase) { return testCase.param.name; });

INSTANTIATE_TEST_SUITE_P(
    TooShortOrTooLong, ColourString,
    testing::Values(ColourCase{"Empty", "", std::nullopt}, ColourCase{"Blank", " \n ", std::nullopt},
                    ColourCase{"Hash", "#", std::nullopt}, ColourCase{"Word", "red", std::nullopt},
                    ColourCase{"Three", "#FFF", std::nullopt}, ColourCase{"Five", "12345", std::nullopt},
                    ColourCase{"Seven", "#FFFFFFF", std::nullopt},
                    ColourCase{"Nine", "#123456789", std::nullopt},
                    ColourCase{"Sixteen", "FFFFFFFFFFFFFFFF", std::nullopt},
                    ColourCase{"MoreThanANumberHolds", "FFFFFFFFFFFFFFFFFFFFFFFF", std::nullopt},
                    ColourCase{"TwoHashes", "##FF0000", std::nullopt},
                    ColourCase{"TwoHashesThenFive", "##FF000", std::nullopt}),
    [](const auto& testCase) { return testCase.param.name; });

// The length counts the whole text, the number only the digits that it begins with.
INSTANTIATE_TEST_SUITE_P(
    LengthAndNumberApart, ColourString,
    testing::Values(ColourCase{"FiveDigitsAndALetter", "12345G", ofBytes(1, 35, 69)},
                    ColourCase{"OneDigit", "FZZZZZ", ofBytes(0, 0, 15)},
                    ColourCase{"FourDigitsOfEight", "1234GGGG", ofBytes(0, 0, 0x12, 0x34)},
                    ColourCase{"NoDigit", "GGGGGG", std::nullopt},
                    ColourCase{"DigitsBehindALetter", "G12345", std::nullopt},
                    ColourCase{"Prefix", "0x1234", ofBytes(0, 18, 52)},
                    ColourCase{"UpperCasePrefix", "0X1234", ofBytes(0, 18, 52)},
                    ColourCase{"PrefixBehindHash", "#0x123456", ofBytes(0, 0x12, 0x34, 0x56)},
                    ColourCase{"PrefixWithoutDigit", "0xZZZZZZ", std::nullopt},
                    ColourCase{"PrefixWithoutDigitOfSix", "0xZZZZ", std::nullopt},
                    ColourCase{"PrefixAlone", "0x", std::nullopt},
                    ColourCase{"PrefixTwice", "0x0x12", ofBytes(0, 0, 0)},
                    ColourCase{"PrefixInside", "10x123", ofBytes(0, 0, 0x10)},
                    ColourCase{"ZeroThenLetter", "0Y1234", ofBytes(0, 0, 0)},
                    ColourCase{"Sign", "-12345", std::nullopt},
                    ColourCase{"SignBefore", "+123456", std::nullopt},
                    ColourCase{"SpaceBehindHash", "# F0000", ofBytes(15, 0, 0)},
                    ColourCase{"SpaceBehindHashThenSix", "# FF0000", std::nullopt},
                    ColourCase{"LineBreakBehindHashIsOneCharacter", "#\r\nF0000", ofBytes(15, 0, 0)},
                    ColourCase{"SpacesBehindHashThenPrefix", "#    0x12", ofBytes(0, 0, 0, 0x12)},
                    ColourCase{"SpaceInside", "12 345", ofBytes(0, 0, 0x12)},
                    ColourCase{"HashInside", "12#345", ofBytes(0, 0, 0x12)},
                    ColourCase{"SpaceBeforeTheHash", "  #FF0000", ofBytes(255, 0, 0)}),
    [](const auto& testCase) { return testCase.param.name; });

INSTANTIATE_TEST_SUITE_P(
    BeyondAscii, ColourString,
    testing::Values(ColourCase{"FullWidthDigits", "１２３４５６", std::nullopt},
                    ColourCase{"FullWidthHash", "＃FF0000", std::nullopt},
                    ColourCase{"ArabicDigits", "١٢٣٤٥٦", std::nullopt},
                    ColourCase{"CombiningMarkIsNoCharacter", "12345G\u0301", ofBytes(1, 35, 69)},
                    ColourCase{"CombiningMarkOnADigit", "123456\u0301", ofBytes(0x12, 0x34, 0x56)},
                    ColourCase{"CombiningMarkEndsTheNumber", "1\u030123456", ofBytes(0, 0, 1)},
                    ColourCase{"EmojiIsOneCharacter", "12345😀", ofBytes(1, 35, 69)},
                    ColourCase{"FamilyIsOneCharacter", "12345👩‍👩‍👧", ofBytes(1, 35, 69)},
                    ColourCase{"FlagIsOneCharacter", "12345🇹🇷", ofBytes(1, 35, 69)},
                    ColourCase{"SharpSIsTwoInUpperCase", "1234ß", ofBytes(0, 0x12, 0x34)},
                    ColourCase{"LigatureIsTwoDigitsInUpperCase", "ﬀ0000", ofBytes(255, 0, 0)},
                    ColourCase{"ZeroWidthSpaceIsNotTrimmed", "\u200BFF0000", std::nullopt},
                    ColourCase{"ByteOrderMarkIsNotTrimmed", "\uFEFF#FF0000", std::nullopt},
                    ColourCase{"NoBreakSpaceBehindHash", "#\u00A0F0000", ofBytes(15, 0, 0)},
                    ColourCase{"DottedCapitalI", "12345İ", ofBytes(1, 35, 69)}),
    [](const auto& testCase) { return testCase.param.name; });

INSTANTIATE_TEST_SUITE_P(
    NotText, ColourString,
    testing::Values(ColourCase{"NotUtf8", "FF000\xFF"sv, std::nullopt},
                    ColourCase{"NotUtf8Around", "\xFF#FF0000"sv, std::nullopt},
                    ColourCase{"CutOffSequence", "12345\xE2\x9C"sv, std::nullopt},
                    ColourCase{"Surrogate", "12345\xED\xA0\x80"sv, std::nullopt},
                    ColourCase{"NulByteInside", "12\0345"sv.substr(0, 3), std::nullopt},
                    ColourCase{"NulByteIsACharacter", std::string_view("12\0\x33\x34\x35", 6),
                               ofBytes(0, 0, 0x12)},
                    ColourCase{"NulByteBehindSix", std::string_view("123456\0", 7), std::nullopt}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(ColourString, IsTrimmedOfEveryKindOfWhiteSpace) {
    for (const std::string& space : test::whiteSpaces()) {
        EXPECT_EQ(UIColor::read(space + space + "#FF0000" + space), ofBytes(255, 0, 0))
            << test::jsonText(space);
    }
}

TEST(ColourString, MayBeVeryLong) {
    const std::string marks = [] {
        std::string text = "12345G";
        for (int count = 0; count < 100'000; ++count) {
            text += "\u0301";
        }
        return text;
    }();
    EXPECT_EQ(UIColor::read(marks), ofBytes(1, 35, 69));
    EXPECT_EQ(UIColor::read(std::string(1'000'000, 'F')), std::nullopt);
}

TEST(UIColor, IsConstructedFromItsFourComponents) {
    constexpr UIColor colour(0.25, 0.5, 0.75, 1);
    EXPECT_EQ(colour.red, 0.25);
    EXPECT_EQ(colour.green, 0.5);
    EXPECT_EQ(colour.blue, 0.75);
    EXPECT_EQ(colour.alpha, 1);
    EXPECT_EQ(colour, UIColor(0.25, 0.5, 0.75, 1));
    EXPECT_NE(colour, UIColor(0.25, 0.5, 0.75, 0.5));
}

}  // namespace
}  // namespace vorna
