// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <tools/schemas/PrettyJson.h>

#include <boost/json/parse.hpp>

namespace vorna::schemas {
namespace {

TEST(PrettyJson, GivesEachMemberALine) {
    EXPECT_EQ(prettyJson(boost::json::parse(R"({"a":{"b":1,"c":"ü\"\n"},"d":[],"e":{}})")),
              "{\n  \"a\": {\n    \"b\": 1,\n    \"c\": \"ü\\\"\\n\"\n  },\n  \"d\": [],\n  \"e\": {}\n}");
}

TEST(PrettyJson, KeepsAFlatListOnOneLine) {
    EXPECT_EQ(prettyJson(boost::json::parse(R"([1,"a",null,true])")), "[1, \"a\", null, true]");
    EXPECT_EQ(prettyJson(boost::json::parse(R"([{"a":1},2])")), "[\n  {\n    \"a\": 1\n  },\n  2\n]");
}

TEST(PrettyJson, ReadsBackToTheSame) {
    const auto value = boost::json::parse(R"({"a":[[],{},[{"b":[1,[2]]}]],"min":-9223372036854775808})");
    EXPECT_EQ(boost::json::parse(prettyJson(value)), value);
}

}  // namespace
}  // namespace vorna::schemas
