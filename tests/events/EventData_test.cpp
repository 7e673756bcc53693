// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/EventData.h>

#include <tests/support/Samples.h>

#include <gtest/gtest.h>

#include <string>

namespace vorna {
namespace {

std::string textOf(const EventData& event) {
    return encode(event).value();
}

TEST(EventDataEncoding, WritesFiveKeysInOrderWithTheDeviceNested) {
    const EventData event = support::sampleEvent("level_up", "7");
    EXPECT_EQ(
        textOf(event),
        R"({"name":"level_up","createDate":1704067200,"endDate":1704067201,"customValue":"7","deviceData":)" +
            json::encode(event.deviceData).value() + "}");
}

TEST(EventDataEncoding, WritesAnEmptyCustomValueAsPresent) {
    EXPECT_NE(textOf(support::sampleEvent("x", "")).find(R"("customValue":"","deviceData")"),
              std::string::npos);
}

TEST(EventDataEncoding, KeepsDatesUnchanged) {
    EventData event = support::sampleEvent();
    event.createDate = 200;
    event.endDate = 100;
    EXPECT_NE(textOf(event).find(R"("createDate":200,"endDate":100)"), std::string::npos);
    event.endDate = 18446744073709551615U;
    EXPECT_NE(textOf(event).find(R"("endDate":18446744073709551615)"), std::string::npos);
}

struct TextCase {
    const char* name;
    std::string text;
};

class EventText : public testing::TestWithParam<TextCase> {};

TEST_P(EventText, SurvivesARoundTripAsNameAndAsValue) {
    const EventData event = support::sampleEvent(GetParam().text, GetParam().text);
    const auto decoded = decodeEventData(textOf(event));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded.value(), event);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, EventText,
    testing::Values(TextCase{"Empty", ""}, TextCase{"OneMebibyte", std::string(1024UL * 1024, 'x')},
                    TextCase{"Quotes", std::string(1000, '"')}, TextCase{"Backslashes", R"(\\n\u0041)"},
                    TextCase{"ControlCharacters", std::string("\x00\x01\x1F\x7F\r\n\t", 7)},
                    TextCase{"Emoji", "👩‍👩‍👧‍👦 ✅ 🇹🇷"},
                    TextCase{"Turkish", "Eksik alanlar: İıŞş"}, TextCase{"LineSeparators", "\u2028\u2029"},
                    TextCase{"Json", R"({"name":"x"})"}),
    [](const auto& testCase) { return testCase.param.name; });

class EventTextThatIsNotUtf8 : public testing::TestWithParam<TextCase> {};

TEST_P(EventTextThatIsNotUtf8, CannotBeEncoded) {
    EXPECT_EQ(json::describe(encode(support::sampleEvent(GetParam().text, "")).error()),
              "name: the text is not UTF-8");
    EXPECT_EQ(json::describe(encode(support::sampleEvent("", GetParam().text)).error()),
              "customValue: the text is not UTF-8");
}

INSTANTIATE_TEST_SUITE_P(Texts, EventTextThatIsNotUtf8,
                         testing::Values(TextCase{"LoneSurrogate", "\xED\xA0\x80"},
                                         TextCase{"StrayByte", "abc\xFFxyz"},
                                         TextCase{"CutOff", "\xF0\x9F\x98"}),
                         [](const auto& testCase) { return testCase.param.name; });

TEST(EventDataEncoding, RejectsADeviceWithNumbersThatJsonCannotHold) {
    EventData event = support::sampleEvent();
    event.deviceData.device.edit().screenScale = 1.0 / 0.0;
    EXPECT_EQ(json::describe(encode(event).error()),
              "deviceData.screenScale: JSON cannot represent the number");
}

class RequiredKey : public testing::TestWithParam<const char*> {};

TEST_P(RequiredKey, IsRequiredWhenAnEventIsDecoded) {
    std::string text = textOf(support::sampleEvent());
    const std::string key = std::string("\"") + GetParam() + "\":";
    text.replace(text.find(key), key.size(), "\"other\":");
    const auto decoded = decodeEventData(text);
    ASSERT_FALSE(decoded);
    EXPECT_EQ(json::describe(decoded.error()), std::string(GetParam()) + ": missing");
}

INSTANTIATE_TEST_SUITE_P(Keys, RequiredKey,
                         testing::Values("name", "createDate", "endDate", "customValue", "deviceData"));

}  // namespace
}  // namespace vorna
