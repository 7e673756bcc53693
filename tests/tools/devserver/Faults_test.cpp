// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Faults.h>

#include <gmock/gmock.h>

#include <ostream>
#include <string>

namespace vorna::devserver {
namespace {

using testing::HasSubstr;

// The fault as the control path lists it, or the error.
std::string inWords(const Result<Fault, FaultError>& fault) {
    if (!fault) {
        return describe(fault.error());
    }
    Faults faults;
    faults.add(*fault);
    return faults.toJson();
}

std::string listed(const std::string& fault) {
    return "{\"faults\":[" + fault + "]}";
}

struct Case {
    std::string name;
    std::string written;
    std::string expected;
};

std::ostream& operator<<(std::ostream& out, const Case& one) {
    return out << one.name;
}

std::string caseName(const testing::TestParamInfo<Case>& parameter) {
    return parameter.param.name;
}

class FaultInJson : public testing::TestWithParam<Case> {};

TEST_P(FaultInJson, IsRead) {
    EXPECT_EQ(inWords(readFaultJson(GetParam().written)), listed(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Of, FaultInJson,
    testing::Values(
        Case{
            "Everything",
            R"({"delayMilliseconds":100,"body":"no","location":"/x","status":302,"count":3,"path":"/v1/event"})",
            R"({"path":"/v1/event","count":3,"status":302,"location":"/x","body":"no","delayMilliseconds":100})"},
        Case{"BodyAlone", R"({"body":"{}"})", R"({"status":200,"body":"{}"})"},
        Case{"Drop", R"({"drop":true})", R"({"drop":true})"},
        Case{"Reset", R"({"reset":true})", R"({"reset":true})"},
        Case{"CutBody", R"({"cutBody":true,"count":1})", R"({"count":1,"cutBody":true})"},
        Case{"CutFaultBody", R"({"cutBody":true,"status":500,"body":"x"})",
             R"({"status":500,"body":"x","cutBody":true})"},
        Case{"HangAfterDelay", R"({"hang":true,"delayMilliseconds":5})",
             R"({"hang":true,"delayMilliseconds":5})"},
        Case{"FlagsThatAreOff", R"({"drop":false,"status":500})", R"({"status":500})"}),
    caseName);

class FaultOption : public testing::TestWithParam<Case> {};

TEST_P(FaultOption, IsRead) {
    EXPECT_EQ(inWords(readFaultOption(GetParam().written)), listed(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Of, FaultOption,
    testing::Values(
        Case{
            "Everything", "path=/v1/event,count=3,status=301,location=https://a.example/,delay=100",
            R"({"path":"/v1/event","count":3,"status":301,"location":"https://a.example/","delayMilliseconds":100})"},
        Case{"Drop", "drop", R"({"drop":true})"},
        Case{"Reset", "path=/v1,reset", R"({"path":"/v1","reset":true})"},
        Case{"CutBody", "cutBody", R"({"cutBody":true})"},
        Case{"Hang", "hang,count=2", R"({"count":2,"hang":true})"},
        Case{"Delay", "delay=5", R"({"delayMilliseconds":5})"},
        Case{"BodyWithCommas", R"(status=201,body={"a":1,"b":2})",
             R"({"status":201,"body":"{\"a\":1,\"b\":2}"})"}),
    caseName);

class FaultMistake : public testing::TestWithParam<Case> {};

TEST_P(FaultMistake, IsNamed) {
    const std::string& written = GetParam().written;
    const auto fault = written.starts_with("{") || written.starts_with("[") ? readFaultJson(written)
                                                                            : readFaultOption(written);
    ASSERT_FALSE(fault) << inWords(fault);
    EXPECT_THAT(describe(fault.error()), HasSubstr(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Of, FaultMistake,
    testing::Values(Case{"NoAction", "path=/v1", "needs status"}, Case{"Empty", "{}", "needs status"},
                    Case{"NotAnObject", "[]", "expected an object"},
                    Case{"UnknownKey", R"({"stauts":500})", "unknown key \"stauts\""},
                    Case{"UnknownOption", "stauts=500", "unknown key \"stauts\""},
                    Case{"UnknownFlag", "explode", "unknown key \"explode\""},
                    Case{"PathWithoutSlash", "path=v1,drop", "must begin with a slash"},
                    Case{"ControlPath", "path=/control/faults,drop", "never affect"},
                    Case{"CountOfNone", "drop,count=0", "count: at least 1"},
                    Case{"NegativeCount", R"({"drop":true,"count":-1})", "count: expected"},
                    Case{"FractionOfACount", R"({"drop":true,"count":1.0})", "count: expected"},
                    Case{"CountInWords", "drop,count=two", "count: expected an unsigned integer"},
                    Case{"StatusInText", R"({"status":"500"})",
                         "status: expected an unsigned integer, found a string"},
                    Case{"InterimStatus", "status=100", "status: from 200 to 999"},
                    Case{"StatusTooLarge", "status=1000", "status: from 200 to 999"},
                    Case{"LocationThatBreaksTheHeader", R"({"status":301,"location":"a\r\nb"})",
                         "location: not a header value"},
                    Case{"LocationWithoutStatus", "location=/x,delay=5", "location: needs a status"},
                    Case{"TwoActions", "drop,hang", "has only one of"},
                    Case{"StatusAndDrop", "drop,status=500", "has only one of"},
                    Case{"CutNothing", "drop,cutBody", "no body to cut"},
                    Case{"BodyOf204", "status=204,body=x", "has no body"},
                    Case{"FlagAsText", R"({"drop":"yes"})", "drop: expected a boolean"},
                    Case{"PathAsNumber", R"({"path":1,"drop":true})", "path: expected a string"},
                    Case{"EndlessDelay", "delay=99999999999", "delay: at most a day"}),
    caseName);

Fault dropping(std::string path, std::optional<std::uint64_t> count) {
    Fault fault;
    fault.path = std::move(path);
    fault.count = count;
    fault.action = DropConnection{};
    return fault;
}

TEST(Faults, ApplyAsOftenAsTheirCount) {
    Faults faults;
    faults.add(dropping("", 2));
    EXPECT_TRUE(faults.take("/v1/event"));
    EXPECT_THAT(faults.toJson(), HasSubstr("\"count\":1"));
    EXPECT_TRUE(faults.take("/v1/config"));
    EXPECT_FALSE(faults.take("/v1/event"));
    EXPECT_EQ(faults.toJson(), "{\"faults\":[]}");
}

TEST(Faults, WithoutACountApplyUntilTheyAreCleared) {
    Faults faults;
    faults.add(dropping("", std::nullopt));
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(faults.take("/v1/event"));
    }
    faults.clear();
    EXPECT_FALSE(faults.take("/v1/event"));
}

TEST(Faults, ApplyOnlyToPathsWithTheirPrefix) {
    Faults faults;
    faults.add(dropping("/v1/event", 1));
    EXPECT_FALSE(faults.take("/v1/config"));
    EXPECT_FALSE(faults.take("/v1/even"));
    EXPECT_TRUE(faults.take("/v1/event"));
}

TEST(Faults, ApplyInTheirOrder) {
    Faults faults;
    Fault first = dropping("/v1/event", 1);
    first.action = ResetConnection{};
    faults.add(first);
    faults.add(dropping("", std::nullopt));
    EXPECT_TRUE(std::holds_alternative<DropConnection>(faults.take("/v1/config")->action));
    EXPECT_TRUE(std::holds_alternative<ResetConnection>(faults.take("/v1/event")->action));
    EXPECT_TRUE(std::holds_alternative<DropConnection>(faults.take("/v1/event")->action));
}

TEST(Faults, NeverApplyToTheControlPath) {
    Faults faults;
    faults.add(dropping("", std::nullopt));
    faults.add(dropping("/", std::nullopt));
    EXPECT_FALSE(faults.take("/control"));
    EXPECT_FALSE(faults.take("/control/faults"));
    EXPECT_TRUE(faults.take("/controlled"));
}

}  // namespace
}  // namespace vorna::devserver
