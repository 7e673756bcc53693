// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/PreferencesDocument.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace vorna {
namespace {

/// What the text becomes when it is read and written again.
std::optional<std::string> rewritten(std::string_view text) {
    const std::optional<PreferencesDocument> document = readPreferencesDocument(text);
    return document ? writePreferencesDocument(*document) : std::nullopt;
}

/// What becomes of a value that is written to a file and read from it.
std::optional<PreferenceValue> kept(PreferenceValue value) {
    std::optional<StoredValue> stored = storedValue(std::move(value));
    if (!stored) {
        return std::nullopt;
    }
    PreferencesDocument document;
    document.emplace("key", std::move(*stored));
    const std::optional<std::string> text = writePreferencesDocument(document);
    if (!text) {
        return std::nullopt;
    }
    const std::optional<PreferencesDocument> read = readPreferencesDocument(*text);
    return read ? preferenceValue(read->at("key")) : std::nullopt;
}

PreferenceValue nestedArrays(std::size_t depth) {
    PreferenceValue value{PreferenceValue::Array{}};
    for (std::size_t level = 1; level < depth; ++level) {
        PreferenceValue::Array around;
        around.push_back(std::move(value));
        value = {std::move(around)};
    }
    return value;
}

TEST(PreferencesDocumentText, IsRewrittenWithEveryValueAsItStood) {
    const std::string text =
        R"({"array":[1,[],{},null,"x"],"big":123456789012345678901234567890,"huge":1e999,"long":0.1234567890123456789012,)"
        R"("minus":-0,"null":null,"object":{"a":{"b":null}},"one":1,"real":1.0,"sum":6.02E+23,"text":"\"\\ş","true":true})"
        "\n";
    EXPECT_EQ(rewritten(text), text);
}

TEST(PreferencesDocumentText, LosesItsBlanksAndFormerValuesOfEqualKeysOnly) {
    EXPECT_EQ(rewritten(" {\n  \"b\" : [ 1 , 2.50 ] ,\t\"a\" : \"\\u0041\", \"b\":3 }\r\n"),
              "{\"a\":\"A\",\"b\":3}\n");
}

TEST(PreferencesDocumentText, IsOneObjectAndNothingElse) {
    for (const std::string_view text :
         {"", " ", "[]", "7", "\"a\"", "null", "{", "{\"a\":1", "{\"a\":1}}", "{\"a\":1} x", "{\"a\":01}",
          "{\"a\":.5}", "{\"a\":+1}", "{\"a\":NaN}", "{a:1}", "{\"a\":\"\xFF\"}", "\xEF\xBB\xBF{}",
          "{\"a\":1,}", "// note\n{}"}) {
        EXPECT_FALSE(readPreferencesDocument(text)) << text;
    }
    EXPECT_TRUE(readPreferencesDocument("{}"));
}

TEST(PreferencesDocumentText, IsNestedToADepthOf512AtMost) {
    const auto nested = [](std::size_t depth) {
        return "{\"a\":" + std::string(depth, '[') + std::string(depth, ']') + "}";
    };
    EXPECT_TRUE(readPreferencesDocument(nested(511)));
    EXPECT_FALSE(readPreferencesDocument(nested(512)));
    EXPECT_FALSE(readPreferencesDocument(nested(1'000'000)));
}

TEST(PreferencesDocumentText, IsRefusedWhenCutAnywhere) {
    const std::string text = R"({"a":[1.5,{"b":"ş\u00e7"}],"c":true,"d":null})";
    ASSERT_TRUE(readPreferencesDocument(text));
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_FALSE(readPreferencesDocument(std::string_view(text).substr(0, length))) << length;
    }
}

struct Kept {
    const char* name;
    PreferenceValue value;
};

std::ostream& operator<<(std::ostream& stream, const Kept& row) {
    return stream << row.name;
}

class PreferenceValueInAFile : public testing::TestWithParam<Kept> {};

TEST_P(PreferenceValueInAFile, IsReadAsItWasWritten) {
    EXPECT_EQ(kept(GetParam().value), GetParam().value);
}

using Integers = std::numeric_limits<std::int64_t>;
using Reals = std::numeric_limits<double>;

INSTANTIATE_TEST_SUITE_P(
    Kinds, PreferenceValueInAFile,
    testing::Values(
        Kept{"Text", {std::string("ş \"quoted\" \\ \n")}}, Kept{"EmptyText", {std::string()}},
        Kept{"ZeroByte", {std::string("a\0b", 3)}}, Kept{"True", {true}}, Kept{"False", {false}},
        Kept{"Zero", {std::int64_t{0}}}, Kept{"Integer", {std::int64_t{5}}},
        Kept{"LargestInteger", {Integers::max()}}, Kept{"SmallestInteger", {Integers::min()}},
        Kept{"RealZero", {0.0}}, Kept{"IntegralReal", {5.0}}, Kept{"NegativeIntegralReal", {-5.0}},
        Kept{"LargeIntegralReal", {9007199254740993.0}}, Kept{"Tenth", {0.1}}, Kept{"Third", {1.0 / 3}},
        Kept{"LargestReal", {Reals::max()}}, Kept{"SmallestReal", {Reals::denorm_min()}},
        Kept{"RealWithExponentAndNoFraction", {1e22}}, Kept{"AwkwardReal", {2.2250738585072011e-308}},
        Kept{"EmptyArray", {PreferenceValue::Array{}}},
        Kept{"Array", {PreferenceValue::Array{{std::string("a")}, {std::int64_t{1}}, {1.0}, {true}}}},
        Kept{"EmptyDictionary", {PreferenceValue::Dictionary{}}},
        Kept{"Dictionary", {PreferenceValue::Dictionary{{"", {1.0}}, {"a", {PreferenceValue::Array{}}}}}},
        Kept{"ArraysNested511Deep", nestedArrays(511)}),
    [](const auto& row) { return row.param.name; });

TEST(PreferenceZeroInAFile, KeepsItsSign) {
    const std::optional<PreferenceValue> value = kept({-0.0});
    ASSERT_TRUE(value);
    EXPECT_TRUE(std::signbit(std::get<double>(value->value)));
}

TEST(PreferenceValueThatNoFileCanHold, IsRefused) {
    EXPECT_FALSE(kept({Reals::quiet_NaN()}));
    EXPECT_FALSE(kept({Reals::infinity()}));
    EXPECT_FALSE(kept({-Reals::infinity()}));
    EXPECT_FALSE(kept({std::string("\xFF")}));
    EXPECT_FALSE(kept({PreferenceValue::Array{{Reals::quiet_NaN()}}}));
    EXPECT_FALSE(kept({PreferenceValue::Dictionary{{"\xFF", {true}}}}));
    EXPECT_FALSE(kept(nestedArrays(512)));
}

TEST(StoredValueOfNoPreferenceKind, HasNoValue) {
    const auto document = readPreferencesDocument(
        R"({"null":null,"inArray":[1,null],"inObject":{"a":null},"huge":1e999,"fine":18446744073709551615})");
    ASSERT_TRUE(document);
    EXPECT_FALSE(preferenceValue(document->at("null")));
    EXPECT_FALSE(preferenceValue(document->at("inArray")));
    EXPECT_FALSE(preferenceValue(document->at("inObject")));
    EXPECT_FALSE(preferenceValue(document->at("huge")));
    // Beyond the range of integers, so the nearest real number.
    EXPECT_EQ(preferenceValue(document->at("fine")), PreferenceValue{18446744073709551615.0});
}

}  // namespace
}  // namespace vorna
