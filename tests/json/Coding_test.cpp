// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Decoding.h>
#include <vorna/json/Encoding.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vorna::json {
namespace {

enum class Colour : std::uint8_t { red = 0, green = 1 };

constexpr bool isKnownValue(Colour colour) {
    return colour <= Colour::green;
}

struct Inner {
    std::string title;

    friend bool operator==(const Inner&, const Inner&) = default;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("title", self.title);
    }
};

struct Outer {
    std::uint64_t number = 0;
    std::optional<std::string> label;
    double real = 0;
    bool flag = false;
    Colour colour = Colour::red;
    std::vector<Inner> inners;
    std::map<std::string, std::string> table;

    friend bool operator==(const Outer&, const Outer&) = default;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("number", self.number);
        visit("label", self.label);
        visit("real", self.real);
        visit("flag", self.flag);
        visit("colour", self.colour);
        visit("inners", self.inners);
        visit("table", self.table);
    }
};

constexpr const char* sampleText =
    R"({"number":18446744073709551615,"label":"l","real":0.5,"flag":true,"colour":1,"inners":[{"title":"a"},{"title":"b"}],"table":{"k":"v"}})";

Outer sample() {
    return {18446744073709551615U, "l", 0.5, true, Colour::green, {{"a"}, {"b"}}, {{"k", "v"}}};
}

std::string decodingProblem(std::string_view text) {
    const Decoded<Outer> decoded = decode<Outer>(text);
    const DecodingError* const error = std::get_if<DecodingError>(&decoded);
    return error == nullptr ? "none" : error->description;
}

/// The sample with one stretch of its text replaced.
std::string changed(const std::string& from, const std::string& to) {
    std::string text = sampleText;
    text.replace(text.find(from), from.size(), to);
    return text;
}

TEST(JsonEncoding, FollowsTheFieldsInTheirOrder) {
    EXPECT_EQ(std::get<std::string>(encode(sample())), sampleText);
}

TEST(JsonEncoding, LeavesOutAnEmptyOptional) {
    Outer outer = sample();
    outer.label.reset();
    EXPECT_EQ(std::get<std::string>(encode(outer)), changed(R"("label":"l",)", ""));
}

TEST(JsonEncoding, SaysWhereTheTextIsThatCannotBeEncoded) {
    Outer outer = sample();
    outer.inners[1].title = "\xFF";
    EXPECT_EQ(std::get<EncodingError>(encode(outer)).description, "inners[1].title: the text is not UTF-8");
    outer = sample();
    outer.label = "\xED\xA0\x80";
    EXPECT_EQ(std::get<EncodingError>(encode(outer)).description, "label: the text is not UTF-8");
}

TEST(JsonDecoding, GivesBackWhatWasEncoded) {
    EXPECT_EQ(std::get<Outer>(decode<Outer>(sampleText)), sample());
}

TEST(JsonDecoding, IgnoresUnknownKeysAndTakesNullForAbsent) {
    const Decoded<Outer> decoded = decode<Outer>(changed(R"("label":"l")", R"("label":null,"more":[1,{}])"));
    EXPECT_FALSE(std::get<Outer>(decoded).label.has_value());
}

TEST(JsonDecoding, TakesTheLastOfEqualKeys) {
    EXPECT_EQ(std::get<Outer>(decode<Outer>(changed(R"("label":"l")", R"("label":"a","label":"b")"))).label,
              "b");
}

struct IntegerCase {
    const char* name;
    const char* text;
    std::optional<std::uint64_t> number;
};

class JsonInteger : public testing::TestWithParam<IntegerCase> {};

TEST_P(JsonInteger, MayBeWrittenInSeveralWaysButNotRounded) {
    const Decoded<Outer> decoded = decode<Outer>(changed("18446744073709551615", GetParam().text));
    if (GetParam().number) {
        EXPECT_EQ(std::get<Outer>(decoded).number, GetParam().number);
    } else {
        EXPECT_TRUE(std::holds_alternative<DecodingError>(decoded));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, JsonInteger,
    testing::Values(IntegerCase{"Plain", "5", 5}, IntegerCase{"WithZeroFraction", "5.0", 5},
                    IntegerCase{"WithExponent", "5e0", 5}, IntegerCase{"Fraction", "5.5", std::nullopt},
                    IntegerCase{"Negative", "-5", std::nullopt},
                    IntegerCase{"BeyondSixtyFourBits", "18446744073709551616", std::nullopt},
                    IntegerCase{"Text", "\"5\"", std::nullopt}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(JsonDecoding, NamesThePathWhatWasExpectedAndWhatWasFound) {
    EXPECT_EQ(decodingProblem(changed(R"({"title":"b"})", R"({"title":7})")),
              "inners[1].title: expected a string, found a number");
    EXPECT_EQ(decodingProblem(changed(R"({"title":"b"})", R"({})")), "inners[1].title: missing");
    EXPECT_EQ(decodingProblem(changed(R"({"k":"v"})", R"({"k":null})")),
              "table.k: expected a string, found null");
    EXPECT_EQ(decodingProblem(changed("true", "1")), "flag: expected a boolean, found a number");
    EXPECT_EQ(decodingProblem(changed("\"colour\":1", "\"colour\":2")),
              "colour: expected one of the known numbers, found 2");
    EXPECT_EQ(decodingProblem("[]"), "expected an object, found an array");
}

TEST(JsonDecoding, SaysAtWhichLineAndColumnTheTextIsNotJson) {
    EXPECT_EQ(decodingProblem("{\n  \"a\": tru}"), "line 2, column 8: syntax error");
    EXPECT_EQ(decodingProblem("{} x"), "line 1, column 4: extra data");
    EXPECT_EQ(decodingProblem(""), "line 1, column 1: incomplete JSON");
}

TEST(JsonDecoding, IsStrictAboutTheText) {
    EXPECT_NE(decodingProblem("\xEF\xBB\xBF{}").find("syntax error"), std::string::npos) << "byte-order mark";
    EXPECT_NE(decodingProblem("{\"label\":\"\xFF\"}"), "none") << "not UTF-8";
    EXPECT_NE(decodingProblem("{\"number\":NaN}"), "none");
}

TEST(JsonDecoding, TakesAnyValueAtTheTop) {
    EXPECT_EQ(std::get<boost::json::value>(parse("7")), boost::json::value(7));
    EXPECT_EQ(std::get<boost::json::value>(parse(" -1.5 ")), boost::json::value(-1.5));
    EXPECT_EQ(std::get<boost::json::value>(parse("null")), boost::json::value(nullptr));
    EXPECT_EQ(std::get<boost::json::value>(parse("\"x\"")), boost::json::value("x"));
    EXPECT_EQ(decodingProblem("7"), "expected an object, found a number");
    EXPECT_EQ(decodingProblem("-"), "line 1, column 2: incomplete JSON");
    EXPECT_EQ(decodingProblem("7 7"), "line 1, column 3: extra data");
}

TEST(JsonDecoding, ComesApartIntoPlaceAndReason) {
    const auto error = std::get<DecodingError>(decode<Outer>(changed(R"({"title":"b"})", R"({"title":7})")));
    EXPECT_EQ(error.path, "inners[1].title");
    EXPECT_EQ(error.line, 0U) << "not known";
    const auto malformed = std::get<DecodingError>(decode<Outer>("{\n ğ"));
    EXPECT_EQ(malformed.path, "");
    EXPECT_EQ(malformed.line, 2U);
    EXPECT_EQ(malformed.column, 2U);
}

TEST(JsonDecoding, AllowsNestingUpToFiveHundredAndTwelve) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_TRUE(std::holds_alternative<boost::json::value>(parse(nested(512))));
    EXPECT_TRUE(std::holds_alternative<DecodingError>(parse(nested(513))));
    EXPECT_TRUE(std::holds_alternative<DecodingError>(parse(nested(1'000'000))));
}

}  // namespace
}  // namespace vorna::json
