// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/EventDocument.h>

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace vorna::devserver {
namespace {

using testing::HasSubstr;

TEST(EventDocument, KeepsItsBytes) {
    const std::string body =
        R"({"name":"caf\u00e9","createDate":200,"endDate":100,"customValue":"","deviceData":{"appId":"x","n":1.50}})";
    const auto document = readEventDocument(body);
    ASSERT_TRUE(document) << describe(document.error());
    const EventDocument& event = *document;
    EXPECT_EQ(event.name, "café");
    EXPECT_EQ(event.customValue, "");
    EXPECT_EQ(event.createDate, 200U);
    EXPECT_EQ(event.endDate, 100U);
    EXPECT_EQ(event.line, body);
}

TEST(EventDocument, AcceptsTheWholeRangeOfDates) {
    const auto document = readEventDocument(
        R"({"name":"","createDate":18446744073709551615,"endDate":0,"customValue":"","deviceData":{}})");
    ASSERT_TRUE(document) << describe(document.error());
    EXPECT_EQ(document->createDate, UINT64_MAX);
}

TEST(EventDocument, IsJoinedIntoOneLine) {
    const auto document =
        readEventDocument("{\n\"name\":\"a\",\r\n\"createDate\":1,\"endDate\":2,\"customValue\":\"b\","
                          "\"deviceData\":{ }\n}\n");
    ASSERT_TRUE(document) << describe(document.error());
    EXPECT_EQ(document->line, R"({"name":"a","createDate":1,"endDate":2,"customValue":"b","deviceData":{}})");
}

struct Case {
    std::string name;
    std::string body;
    std::string error;
};

std::ostream& operator<<(std::ostream& out, const Case& one) {
    return out << one.name;
}

class EventDocumentMistake : public testing::TestWithParam<Case> {};

TEST_P(EventDocumentMistake, IsNamed) {
    const auto document = readEventDocument(GetParam().body);
    ASSERT_FALSE(document);
    EXPECT_THAT(describe(document.error()), HasSubstr(GetParam().error));
}

std::string with(const std::string& name, const std::string& createDate, const std::string& customValue,
                 const std::string& deviceData) {
    return R"({"name":)" + name + R"(,"createDate":)" + createDate + R"(,"endDate":2,"customValue":)" +
           customValue + R"(,"deviceData":)" + deviceData + "}";
}

INSTANTIATE_TEST_SUITE_P(
    Of, EventDocumentMistake,
    testing::Values(
        Case{"Empty", "", "expected JSON, found nothing"},
        Case{"Whitespace", " \n", "expected JSON, found nothing"}, Case{"NotJson", "name=a", "not JSON"},
        Case{"CutShort", R"({"name":"a")", "not JSON"},
        Case{"TwoDocuments", with("\"a\"", "1", "\"\"", "{}") + "{}", "not JSON"},
        Case{"InvalidUtf8", with("\"\xff\"", "1", "\"\"", "{}"), "not JSON"},
        Case{"TooDeep",
             with("\"a\"", "1", "\"\"", "{\"a\":" + std::string(1000, '[') + std::string(1000, ']') + "}"),
             "not JSON"},
        Case{"Array", "[1]", "expected an object, found an array"},
        Case{"Null", "null", "expected an object, found null"},
        Case{"MissingKey", R"({"name":"a","createDate":1,"endDate":2,"deviceData":{}})",
             "missing key \"customValue\""},
        Case{"FurtherKey",
             R"({"name":"a","createDate":1,"endDate":2,"customValue":"","deviceData":{},"userId":"u"})",
             "unexpected key \"userId\""},
        Case{"RepeatedKey",
             R"({"name":"a","name":"b","createDate":1,"endDate":2,"customValue":"","deviceData":{}})",
             "repeated key \"name\""},
        Case{"NameIsNumber", with("1", "1", "\"\"", "{}"), "name: expected a string, found a number"},
        Case{"CustomValueIsNull", with("\"a\"", "1", "null", "{}"),
             "customValue: expected a string, found null"},
        Case{"DateIsText", with("\"a\"", "\"1\"", "\"\"", "{}"),
             "createDate: expected an unsigned integer, found a string"},
        Case{"DateIsNegative", with("\"a\"", "-1", "\"\"", "{}"), "createDate: expected an unsigned integer"},
        Case{"DateIsFraction", with("\"a\"", "1.5", "\"\"", "{}"),
             "createDate: expected an unsigned integer"},
        Case{"DateIsTooLarge", with("\"a\"", "18446744073709551616", "\"\"", "{}"),
             "createDate: expected an unsigned integer"},
        Case{"DeviceDataIsArray", with("\"a\"", "1", "\"\"", "[]"),
             "deviceData: expected an object, found an array"}),
    [](const auto& parameter) { return parameter.param.name; });

}  // namespace
}  // namespace vorna::devserver
