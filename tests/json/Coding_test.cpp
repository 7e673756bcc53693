// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Decoding.h>
#include <vorna/json/Encoding.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
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
    return decoded ? "none" : describe(decoded.error(), text);
}

/// The sample with one stretch of its text replaced.
std::string changed(const std::string& from, const std::string& to) {
    std::string text = sampleText;
    text.replace(text.find(from), from.size(), to);
    return text;
}

TEST(JsonEncoding, WritesFieldsInTheOrderOfTheList) {
    EXPECT_EQ(encode(sample()).value(), sampleText);
}

TEST(JsonEncoding, OmitsEmptyOptionalFields) {
    Outer outer = sample();
    outer.label.reset();
    EXPECT_EQ(encode(outer).value(), changed(R"("label":"l",)", ""));
}

TEST(JsonEncoding, ReportsPathAndReason) {
    Outer outer = sample();
    outer.inners[1].title = "\xFF";
    EXPECT_EQ(encode(outer).error(),
              (EncodingError{Path{"inners", 1U, "title"}, EncodingError::Reason::notUtf8}));
    outer = sample();
    outer.label = "\xED\xA0\x80";
    EXPECT_EQ(encode(outer).error(), (EncodingError{Path{"label"}, EncodingError::Reason::notUtf8}));
    outer = sample();
    outer.real = std::numeric_limits<double>::infinity();
    EXPECT_EQ(encode(outer).error(), (EncodingError{Path{"real"}, EncodingError::Reason::notFinite}));
    outer = sample();
    outer.table["\xFF"] = "x";
    EXPECT_EQ(encode(outer).error(), (EncodingError{Path{"table", "\xFF"}, EncodingError::Reason::notUtf8}));
}

TEST(JsonDecoding, RestoresAnEncodedRecord) {
    EXPECT_EQ(decode<Outer>(sampleText).value(), sample());
}

TEST(JsonDecoding, IgnoresUnknownKeysAndTreatsNullAsAbsent) {
    const Decoded<Outer> decoded = decode<Outer>(changed(R"("label":"l")", R"("label":null,"more":[1,{}])"));
    EXPECT_FALSE(decoded.value().label.has_value());
}

TEST(JsonDecoding, UsesTheLastOfDuplicateKeys) {
    EXPECT_EQ(decode<Outer>(changed(R"("label":"l")", R"("label":"a","label":"b")")).value().label, "b");
}

struct IntegerCase {
    const char* name;
    const char* text;
    std::optional<std::uint64_t> number;
};

class JsonInteger : public testing::TestWithParam<IntegerCase> {};

TEST_P(JsonInteger, IsAcceptedInSeveralFormsButNeverRounded) {
    const Decoded<Outer> decoded = decode<Outer>(changed("18446744073709551615", GetParam().text));
    if (GetParam().number) {
        EXPECT_EQ(decoded.value().number, GetParam().number);
    } else {
        EXPECT_FALSE(decoded);
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

TEST(JsonDecoding, DescribesPathExpectedAndFound) {
    EXPECT_EQ(decodingProblem(changed(R"({"title":"b"})", R"({"title":7})")),
              "inners[1].title: expected a string, found a number");
    EXPECT_EQ(decodingProblem(changed(R"({"title":"b"})", R"({})")), "inners[1].title: missing");
    EXPECT_EQ(decodingProblem(changed(R"({"k":"v"})", R"({"k":null})")),
              "table.k: expected a string, found null");
    EXPECT_EQ(decodingProblem(changed("true", "1")), "flag: expected a boolean, found a number");
    EXPECT_EQ(decodingProblem(changed("\"colour\":1", "\"colour\":2")),
              "colour: expected one of the known numbers, found the number 2");
    EXPECT_EQ(decodingProblem(changed("\"colour\":1", "\"colour\":\"red\"")),
              "colour: expected one of the known numbers, found a string");
    EXPECT_EQ(decodingProblem(changed("18446744073709551615", "-5")),
              "number: expected an unsigned 64-bit integer, found the number -5");
    EXPECT_EQ(decodingProblem("[]"), "expected an object, found an array");
}

TEST(JsonDecoding, LocatesInvalidJson) {
    EXPECT_EQ(decodingProblem("{\n  \"a\": tru}"), "line 2, column 8: syntax error");
    EXPECT_EQ(decodingProblem("{} x"), "line 1, column 4: extra data");
    EXPECT_EQ(decodingProblem(""), "line 1, column 1: incomplete JSON");
}

TEST(JsonDecoding, RejectsByteOrderMarksAndInvalidText) {
    EXPECT_NE(decodingProblem("\xEF\xBB\xBF{}").find("syntax error"), std::string::npos) << "byte-order mark";
    EXPECT_NE(decodingProblem("{\"label\":\"\xFF\"}"), "none") << "not UTF-8";
    EXPECT_NE(decodingProblem("{\"number\":NaN}"), "none");
}

TEST(JsonDecoding, AcceptsAnyValueAtTheTop) {
    EXPECT_EQ(parse("7").value(), boost::json::value(7));
    EXPECT_EQ(parse(" -1.5 ").value(), boost::json::value(-1.5));
    EXPECT_EQ(parse("null").value(), boost::json::value(nullptr));
    EXPECT_EQ(parse("\"x\"").value(), boost::json::value("x"));
    EXPECT_EQ(decodingProblem("7"), "expected an object, found a number");
    EXPECT_EQ(decodingProblem("-"), "line 1, column 2: incomplete JSON");
    EXPECT_EQ(decodingProblem("7 7"), "line 1, column 3: extra data");
}

TEST(JsonDecoding, ReportsErrorsAsValues) {
    const std::string text = changed(R"({"title":"b"})", R"({"title":7})");
    EXPECT_EQ(decode<Outer>(text).error(),
              (DecodingError{std::nullopt, Path{"inners", 1U, "title"}, "a string", Kind::number}));
    EXPECT_EQ(decode<Outer>("{}").error(),
              (DecodingError{std::nullopt, Path{"number"}, "a value", DecodingError::Missing()}));
    EXPECT_EQ(decode<Outer>(changed("18446744073709551615", "-5.5")).error(),
              (DecodingError{std::nullopt, Path{"number"}, "an unsigned 64-bit integer",
                             DecodingError::Number{"-5.5"}}));
    EXPECT_EQ(decode<Outer>("{\n ğ").error(),
              (DecodingError{3, Path{}, "JSON", DecodingError::Malformed{"syntax error"}}));
}

TEST(JsonDecoding, AllowsNestingUpTo512) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_TRUE(parse(nested(512)));
    EXPECT_FALSE(parse(nested(513)));
    EXPECT_FALSE(parse(nested(1'000'000)));
}

}  // namespace
}  // namespace vorna::json
