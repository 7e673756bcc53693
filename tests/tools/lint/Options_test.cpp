// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Options.h>

#include <tools/lint/Rules.h>

#include <gmock/gmock.h>

#include <vector>

namespace vorna::lint {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Result<Options, tools::EarlyExit> read(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "vorna-lint");
    return readOptions(static_cast<int>(arguments.size()), arguments.data());
}

Options options(std::vector<const char*> arguments) {
    auto options = read(std::move(arguments));
    if (!options) {
        ADD_FAILURE() << options.error().output;
        return {};
    }
    return *options;
}

tools::EarlyExit exitOf(std::vector<const char*> arguments) {
    const auto options = read(std::move(arguments));
    return options ? tools::EarlyExit{-1, "accepted"} : options.error();
}

TEST(LintOptions, HaveDefaults) {
    const Options defaults = options({"a.json"});
    EXPECT_THAT(defaults.files, ElementsAre("a.json"));
    EXPECT_EQ(defaults.kind, std::nullopt);
    EXPECT_EQ(defaults.format, Format::human);
}

TEST(LintOptions, TakeSeveralFilesAndStandardInput) {
    EXPECT_THAT(options({"b.json", "-", "a.json"}).files, ElementsAre("b.json", "-", "a.json"));
    EXPECT_THAT(options({"--kind", "paywall", "a.json", "b.json"}).files, ElementsAre("a.json", "b.json"));
}

TEST(LintOptions, TakeAKindAndAFormat) {
    EXPECT_EQ(options({"--kind", "paywall", "a"}).kind, DocumentKind::paywall);
    EXPECT_EQ(options({"--kind=onboarding", "a"}).kind, DocumentKind::onboarding);
    EXPECT_EQ(options({"a", "--format", "json"}).format, Format::json);
    EXPECT_EQ(options({"a", "--format", "human"}).format, Format::human);
}

TEST(LintOptions, HelpNamesThemAllAndSucceeds) {
    const tools::EarlyExit help = exitOf({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* name : {"FILE", "--kind", "--format", "--rules", "--version", "Exit status"}) {
        EXPECT_THAT(help.output, HasSubstr(name));
    }
}

TEST(LintOptions, TheListOfRulesNamesEveryRule) {
    const tools::EarlyExit list = exitOf({"--rules"});
    EXPECT_EQ(list.status, 0);
    for (const Rule& rule : rules()) {
        EXPECT_THAT(list.output, HasSubstr(std::string(rule.code) + " "));
        EXPECT_THAT(list.output, HasSubstr(std::string(rule.summary) + "\n"));
    }
}

TEST(LintOptions, TheVersionMatchesTheProject) {
    const tools::EarlyExit version = exitOf({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "vorna-lint " VORNA_VERSION "\n");
}

TEST(LintOptions, UsageErrorsAreReported) {
    struct Row {
        std::vector<const char*> arguments;
        const char* message;
    };

    const std::vector<Row> rows = {
        {{}, "no FILE given"},
        {{"--kind", "paywall"}, "no FILE given"},
        {{"--kind", "Paywall", "a"}, "--kind"},
        {{"--kind", "1", "a"}, "--kind"},
        {{"--format", "xml", "a"}, "--format"},
        {{"a", "--no-such-option"}, "--no-such-option"},
    };
    for (const auto& [arguments, message] : rows) {
        const tools::EarlyExit exit = exitOf(arguments);
        EXPECT_EQ(exit.status, 2) << message;
        EXPECT_THAT(exit.output, HasSubstr(message));
    }
}

}  // namespace
}  // namespace vorna::lint
