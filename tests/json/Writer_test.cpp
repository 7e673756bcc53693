// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/Writer.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

namespace vorna::json {
namespace {

template <class Write>
std::string written(Write write) {
    std::string text;
    Writer writer(text);
    write(writer);
    return text;
}

TEST(JsonWriter, SeparatesMembersAndElements) {
    EXPECT_EQ(written([](Writer& writer) {
                  writer.beginObject();
                  EXPECT_TRUE(writer.key("a"));
                  writer.number(std::uint64_t{1});
                  EXPECT_TRUE(writer.key("b"));
                  writer.beginArray();
                  EXPECT_TRUE(writer.text("x"));
                  writer.beginObject();
                  writer.endObject();
                  writer.boolean(false);
                  writer.endArray();
                  EXPECT_TRUE(writer.key("c"));
                  writer.boolean(true);
                  writer.endObject();
              }),
              R"({"a":1,"b":["x",{},false],"c":true})");
}

TEST(JsonWriter, EscapesSpecialCharacters) {
    EXPECT_EQ(written([](Writer& writer) { EXPECT_TRUE(writer.text("a\"b\\c\n\t\x01/ğ😀")); }),
              "\"a\\\"b\\\\c\\n\\t\\u0001/ğ😀\"");
    EXPECT_EQ(written([](Writer& writer) { EXPECT_TRUE(writer.text(std::string_view("\0", 1))); }),
              "\"\\u0000\"");
}

struct NumberCase {
    const char* name;
    double number;
    const char* text;
};

class JsonNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(JsonNumber, IsWrittenInTheShortestFormThatReadsBack) {
    const std::string text = written([](Writer& writer) { EXPECT_TRUE(writer.number(GetParam().number)); });
    EXPECT_EQ(text, GetParam().text);
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(Cases, JsonNumber,
                         testing::Values(NumberCase{"Whole", 375, "375"}, NumberCase{"Zero", 0, "0"},
                                         NumberCase{"Half", 2.5, "2.5"}, NumberCase{"Tenth", 0.1, "0.1"},
                                         NumberCase{"Negative", -1, "-1"},
                                         NumberCase{"Large", 1e300, "1e+300"},
                                         NumberCase{"Smallest", 5e-324, "5e-324"},
                                         NumberCase{"SeventeenDigits", 0.1 + 0.2, "0.30000000000000004"}),
                         [](const auto& testCase) { return testCase.param.name; });

TEST(JsonWriter, WritesAFloatWithOnlyTheDigitsItNeeds) {
    EXPECT_EQ(written([](Writer& writer) { EXPECT_TRUE(writer.number(0.87F)); }), "0.87");
    EXPECT_EQ(written([](Writer& writer) { EXPECT_TRUE(writer.number(-1.0F)); }), "-1");
}

TEST(JsonWriter, KeepsSixtyFourBitIntegersExact) {
    EXPECT_EQ(written([](Writer& writer) { writer.number(std::numeric_limits<std::uint64_t>::max()); }),
              "18446744073709551615");
    EXPECT_EQ(written([](Writer& writer) { writer.number(std::numeric_limits<std::int64_t>::min()); }),
              "-9223372036854775808");
}

TEST(JsonWriter, RejectsValuesThatJsonCannotRepresent) {
    std::string text;
    Writer writer(text);
    constexpr auto notFinite = EncodingError::Reason::notFinite;
    EXPECT_EQ(writer.number(std::nan("")).error(), notFinite);
    EXPECT_EQ(writer.number(std::numeric_limits<double>::infinity()).error(), notFinite);
    EXPECT_EQ(writer.number(std::numeric_limits<float>::infinity()).error(), notFinite);
    constexpr auto notUtf8 = EncodingError::Reason::notUtf8;
    EXPECT_EQ(writer.text("\xFF").error(), notUtf8);
    EXPECT_EQ(writer.key("\xFF").error(), notUtf8);
}

}  // namespace
}  // namespace vorna::json
