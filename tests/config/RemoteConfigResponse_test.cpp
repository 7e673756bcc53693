// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigResponse.h>

#include <tests/support/ConfigTables.h>

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <string>
#include <string_view>

namespace vorna {
namespace {

using Configs = std::map<std::string, std::string>;

/// The table, or a table with only the error, so that a failing expectation shows it.
Configs decoded(std::string_view body) {
    const auto result = decodeRemoteConfigResponse(body);
    if (!result) {
        return {{"(error)", json::describe(result.error(), body)}};
    }
    return support::entriesOf(*result->configs);
}

std::string errorIn(std::string_view body) {
    const auto result = decodeRemoteConfigResponse(body);
    return result ? "(no error)" : json::describe(result.error(), body);
}

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(RemoteConfigResponseBody, YieldsItsTable) {
    EXPECT_EQ(decoded(R"({"configs":{"theme":"dark","limit":"12"}})"),
              (Configs{{"limit", "12"}, {"theme", "dark"}}));
}

TEST(RemoteConfigResponseBody, MayHoldAnEmptyTable) {
    EXPECT_EQ(decoded(R"({"configs":{}})"), Configs{});
}

TEST(RemoteConfigResponseBody, MayHoldEmptyKeysAndValuesAndAnyCharacter) {
    EXPECT_EQ(
        decoded("{\"configs\":{\"\":\"\",\"a\\u0000b\":\"\\u0000\",\"\\ud83d\\ude00\":\"\xC5\x9F\\n\"}}"),
        (Configs{
            {"", ""}, {std::string("a\0b", 3), std::string("\0", 1)}, {"\xF0\x9F\x98\x80", "\xC5\x9F\n"}}));
}

TEST(RemoteConfigResponseBody, IgnoresOtherKeysOfAnyKind) {
    EXPECT_EQ(decoded(R"({"version":3,"configs":{"a":"1"},"more":{"b":[null,true]}})"),
              (Configs{{"a", "1"}}));
}

TEST(RemoteConfigResponseBody, UsesTheLastOfDuplicateKeys) {
    EXPECT_EQ(decoded(R"({"configs":{"a":"1","b":"2","a":"3"}})"), (Configs{{"a", "3"}, {"b", "2"}}));
    EXPECT_EQ(decoded(R"({"configs":{"a":"1"},"configs":{"b":"2"}})"), (Configs{{"b", "2"}}));
}

TEST(RemoteConfigResponseBody, UsesOnlyTheLastOfDuplicateTables) {
    EXPECT_EQ(decoded(R"({"configs":7,"configs":{"b":"2"}})"), (Configs{{"b", "2"}}));
    EXPECT_EQ(decoded(R"({"configs":{"a":1},"configs":{"b":"2"}})"), (Configs{{"b", "2"}}));
    EXPECT_EQ(errorIn(R"({"configs":{"b":"2"},"configs":[]})"),
              "configs: expected an object, found an array");
}

TEST(RemoteConfigResponseBody, IsRefusedForAWrongValueEvenIfTheKeyHasAnother) {
    EXPECT_EQ(errorIn(R"({"configs":{"a":1,"a":"2"}})"), "configs.a: expected a string, found a number");
}

TEST(RemoteConfigResponseBody, IsNotConfusedByTheNameOfTheTableElsewhere) {
    EXPECT_EQ(
        decoded(
            R"({"a":{"configs":{"x":"1"}},"configs":{"configs":"2","b":"3"},"c":["configs",{"configs":4}]})"),
        (Configs{{"b", "3"}, {"configs", "2"}}));
    EXPECT_EQ(errorIn(R"({"a":{"configs":{"x":"1"}}})"), "configs: missing");
    EXPECT_EQ(errorIn(R"({"configs":{"a":{"b":"1"},"c":[{"d":"2"}]}})"),
              "configs.a: expected a string, found an object");
}

TEST(RemoteConfigResponseBody, MayHoldLongTextsWithEscapes) {
    Configs configs;
    for (const std::size_t length : {0U, 1U, 127U, 128U, 16'383U, 16'384U, 300'000U}) {
        const std::string text(length, '"');
        configs.emplace(text + "key", "\n" + text);
    }
    EXPECT_TRUE(decoded(support::configAnswer(configs)) == configs);
}

TEST(RemoteConfigResponseBody, AllowsIgnoredValuesNestedUpTo512Levels) {
    EXPECT_EQ(decoded(R"({"configs":{"a":"1"},"more":)" + nested(511) + "}"), (Configs{{"a", "1"}}));
}

TEST(RemoteConfigResponseBody, MayHoldAHundredThousandKeys) {
    Configs configs;
    for (int index = 0; index < 100'000; ++index) {
        const std::string key = "key_" + std::to_string(index);
        configs.emplace(key, "value of " + key);
    }
    std::string body = support::configAnswer(configs);
    EXPECT_TRUE(decoded(body) == configs);
    body.replace(body.size() - 2, 2, R"(,"last":5}})");
    EXPECT_EQ(errorIn(body), "configs.last: expected a string, found a number");
}

struct Refused {
    const char* name;
    std::string body;
    std::string error;
};

std::ostream& operator<<(std::ostream& stream, const Refused& row) {
    return stream << row.name;
}

class RemoteConfigResponseBodyIsRefused : public testing::TestWithParam<Refused> {};

TEST_P(RemoteConfigResponseBodyIsRefused, WithPathAndReason) {
    EXPECT_EQ(errorIn(GetParam().body), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, RemoteConfigResponseBodyIsRefused,
    testing::Values(
        Refused{"NumberAmongStrings", R"({"configs":{"a":"1","b":2}})",
                "configs.b: expected a string, found a number"},
        Refused{"RealNumber", R"({"configs":{"b":2.5}})", "configs.b: expected a string, found a number"},
        Refused{"True", R"({"configs":{"b":true}})", "configs.b: expected a string, found a boolean"},
        Refused{"Null", R"({"configs":{"b":null}})", "configs.b: expected a string, found null"},
        Refused{"Object", R"({"configs":{"b":{"c":"d"}}})", "configs.b: expected a string, found an object"},
        Refused{"Array", R"({"configs":{"b":["d"]}})", "configs.b: expected a string, found an array"},
        Refused{"NoConfigs", R"({"config":{}})", "configs: missing"},
        Refused{"ConfigsOfOtherCase", R"({"Configs":{}})", "configs: missing"},
        Refused{"NullConfigs", R"({"configs":null})", "configs: expected an object, found null"},
        Refused{"ArrayOfConfigs", R"({"configs":[]})", "configs: expected an object, found an array"},
        Refused{"TextOfConfigs", R"({"configs":"{}"})", "configs: expected an object, found a string"},
        Refused{"ArrayAtTheTop", R"([{"configs":{}}])", "expected an object, found an array"},
        Refused{"TextAtTheTop", R"("configs")", "expected an object, found a string"},
        Refused{"KeyWithLineBreaks", R"({"configs":{"a\n[VornaSDK] b\u007f":1}})",
                R"(configs["a\n[VornaSDK] b\u007F"]: expected a string, found a number)"}),
    [](const auto& row) { return row.param.name; });

class RemoteConfigResponseBodyIsNotJson : public testing::TestWithParam<Refused> {};

TEST_P(RemoteConfigResponseBodyIsNotJson, AndTheErrorHasItsPosition) {
    EXPECT_EQ(errorIn(GetParam().body).substr(0, GetParam().error.size()), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, RemoteConfigResponseBodyIsNotJson,
    testing::Values(
        Refused{"NoBytes", "", "line 1, column 1: "}, Refused{"Blanks", " \n ", "line 2, column "},
        Refused{"CutOff", R"({"configs":{"a":"1)", "line 1, column "},
        Refused{"ByteOrderMark", "\xEF\xBB\xBF{\"configs\":{}}", "line 1, column "},
        Refused{"ValueThatIsNotUtf8", "{\"configs\":{\"a\":\"\xC3\x28\"}}", "line 1, column "},
        Refused{"KeyThatIsNotUtf8", "{\"configs\":{\"\xFF\":\"1\"}}", "line 1, column "},
        Refused{"LoneSurrogate", R"({"configs":{"a":"\ud800"}})", "line 1, column "},
        Refused{"SomethingAfterTheEnd", "{\"configs\":{}}\n}", "line 2, column "},
        Refused{"TrailingComma", R"({"configs":{"a":"1",}})", "line 1, column "},
        Refused{"Comment", "/**/{\"configs\":{}}", "line 1, column "},
        Refused{"HtmlPage", "<html>Sign in</html>", "line 1, column "},
        Refused{"NestedDeeperThan512", R"({"configs":{},"more":)" + nested(512) + "}", "line 1, column "},
        Refused{"NestedVeryDeeply", R"({"configs":)" + std::string(1'000'000, '['), "line 1, column "}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace vorna
