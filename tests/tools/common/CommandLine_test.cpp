// SPDX-License-Identifier: Apache-2.0
#include <tools/common/CommandLine.h>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include <stdexcept>
#include <vector>

namespace vorna::tools {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

Result<int, EarlyExit> numberOf(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "program");
    int number = 0;
    CLI::App app("Counts.", "vorna-count");
    app.add_option("--number", number, "How far to count");
    if (auto parsed = parse(app, static_cast<int>(arguments.size()), arguments.data()); !parsed) {
        return Unexpected(std::move(parsed).error());
    }
    if (number < 0) {
        return mistake(app, "--number: less than 0");
    }
    return number;
}

TEST(CommandLine, ReadsTheOptions) {
    const auto number = numberOf({"--number", "7"});
    ASSERT_TRUE(number);
    EXPECT_EQ(*number, 7);
}

TEST(CommandLine, HelpSucceedsAndListsEveryOption) {
    const auto result = numberOf({"--help"});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().status, 0);
    for (const char* text : {"Counts.", "--help", "How far to count", "Print version and exit"}) {
        EXPECT_THAT(result.error().output, HasSubstr(text));
    }
}

TEST(CommandLine, VersionSucceedsAndNamesTheProgram) {
    const auto result = numberOf({"--version"});
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().status, 0);
    EXPECT_THAT(result.error().output, MatchesRegex("vorna-count [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(CommandLine, MistakesHaveStatusTwoAndNameTheProgram) {
    for (const std::vector<const char*>& arguments : std::vector<std::vector<const char*>>{
             {"--other"}, {"--number", "x"}, {"--number", "-1"}, {"stray"}}) {
        const auto result = numberOf(arguments);
        ASSERT_FALSE(result) << arguments.front();
        EXPECT_EQ(result.error().status, usageStatus) << arguments.front();
        EXPECT_THAT(result.error().output, StartsWith("vorna-count: "));
        EXPECT_THAT(result.error().output, HasSubstr(arguments.front()));
        EXPECT_THAT(result.error().output, HasSubstr("\nRun with --help for more information.\n"));
    }
}

TEST(RunProgram, ReturnsTheStatusOfItsBody) {
    EXPECT_EQ(runProgram("vorna-count", 9, [] { return 3; }), 3);
}

TEST(RunProgram, PrintsAnExceptionAndReturnsTheFailureStatus) {
    testing::internal::CaptureStderr();
    const int status = runProgram("vorna-count", 9, []() -> int { throw std::runtime_error("too far"); });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "vorna-count: too far\n");
    EXPECT_EQ(status, 9);
}

}  // namespace
}  // namespace vorna::tools
