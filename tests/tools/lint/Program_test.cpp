// SPDX-License-Identifier: Apache-2.0
// The program as its users run it: arguments and files in, lines and exit status out.

#include <tests/support/TemporaryFolder.h>
#include <tests/tools/lint/SampleDocuments.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>

namespace vorna::lint {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
    int status = -1;
    std::string output;
    std::string problems;
};

class LintProgram : public testing::Test {
  protected:
    // Runs in the folder of the test's files.
    [[nodiscard]] Outcome run(const std::string& arguments, std::string_view input = {}) const {
        folder_.write(".input", input);
        const std::string command = "cd '" + folder_.path().string() + "' && '" VORNA_LINT_PATH "' " +
                                    arguments + " <.input >.output 2>.problems";
        const int status = std::system(command.c_str());  // NOLINT(concurrency-mt-unsafe)
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, support::contentsOf(folder_.path() / ".output"),
                support::contentsOf(folder_.path() / ".problems")};
    }

    support::TemporaryFolder folder_;
};

TEST_F(LintProgram, ExitsWithZeroWithoutFindings) {
    folder_.write("paywall.json", paywall());
    folder_.write("onboarding.json", onboarding());
    const Outcome result = run("paywall.json onboarding.json");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "2 documents, no findings\n");
    EXPECT_EQ(result.problems, "");
}

TEST_F(LintProgram, ExitsWithOneForAnError) {
    folder_.write("paywall.json", "{\n  \"exitButtonDelay\": \"5\"\n}\n");
    const Outcome result = run("paywall.json");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "paywall.json:2:3: error: exitButtonDelay: expected an integer, found a string; "
                             "nothing is shown [wrong-type]\n1 error, 0 warnings in 1 of 1 document\n");
    EXPECT_EQ(result.problems, "");
}

TEST_F(LintProgram, ExitsWithOneForAWarning) {
    folder_.write("paywall.json", paywall(R"({"exitButtonDelay":-1})"));
    const Outcome result = run("paywall.json");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, EndsWith("[negative-delay]\n0 errors, 1 warning in 1 of 1 document\n"));
}

TEST_F(LintProgram, ExitsWithOneForTextThatIsNotJson) {
    folder_.write("notes.txt", "Buy milk.\n");
    folder_.write("empty.json", "");
    const Outcome notes = run("notes.txt");
    EXPECT_EQ(notes.status, 1);
    EXPECT_THAT(notes.output, StartsWith("notes.txt:1:1: error: not valid JSON: "));
    const Outcome empty = run("empty.json");
    EXPECT_EQ(empty.status, 1);
    EXPECT_THAT(empty.output,
                StartsWith("empty.json:1:1: error: not valid JSON: the text is empty; nothing is shown"));
}

TEST_F(LintProgram, ExitsWithTwoForAnUnreadableFileButChecksTheOthers) {
    folder_.write("paywall.json", paywall(R"({"exitButtonDelay":-1})"));
    const Outcome result = run("missing.json paywall.json .");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.problems, "vorna-lint: missing.json: No such file or directory\n"
                               "vorna-lint: .: Is a directory\n");
    EXPECT_THAT(result.output, EndsWith("0 errors, 1 warning in 1 of 1 document\n"));
    const Outcome alone = run("missing.json");
    EXPECT_EQ(alone.status, 2);
    EXPECT_EQ(alone.output, "");
}

TEST_F(LintProgram, ExitsWithTwoForAUsageError) {
    for (const char* arguments :
         {"", "--no-such-option", "--kind other paywall.json", "--format xml paywall.json"}) {
        const Outcome result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.output, "") << arguments;
        EXPECT_THAT(result.problems, StartsWith("vorna-lint: ")) << arguments;
    }
}

TEST_F(LintProgram, PrintsHelpVersionAndRules) {
    const Outcome help = run("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("--kind"));
    const Outcome version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.output, testing::MatchesRegex("vorna-lint [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    const Outcome list = run("--rules");
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.output, HasSubstr("not-json "));
}

TEST_F(LintProgram, ReadsStandardInput) {
    EXPECT_EQ(run("-", paywall()).status, 0);
    const Outcome bad = run("-", paywall(R"({"zzz":1})"));
    EXPECT_EQ(bad.status, 1);
    EXPECT_THAT(bad.output, StartsWith("<stdin>:1:"));
    EXPECT_EQ(run("-").status, 1) << "empty input is not a document";
}

TEST_F(LintProgram, ChecksADocumentAgainstTheGivenKind) {
    folder_.write("paywall.json", paywall());
    EXPECT_EQ(run("--kind paywall paywall.json").status, 0);
    const Outcome result = run("--kind onboarding paywall.json");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("expected an array, found an object"));
}

TEST_F(LintProgram, NamesFilesAsGiven) {
    folder_.write("a folder/ü.json", "[]");
    const Outcome result = run("'./a folder/ü.json'");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, StartsWith("./a folder/ü.json:1:1: warning: "));
}

TEST_F(LintProgram, WritesJsonForPrograms) {
    folder_.write("good.json", paywall());
    folder_.write("bad.json", "[\n]");
    const Outcome result = run("--format json good.json bad.json");
    EXPECT_EQ(result.status, 1);
    const boost::json::value report = boost::json::parse(result.output);
    EXPECT_EQ(report.at("warnings").as_int64(), 1);
    EXPECT_EQ(report.at("errors").as_int64(), 0);
    const auto& documents = report.at("documents").as_array();
    ASSERT_EQ(documents.size(), 2U);
    EXPECT_EQ(documents[0].at("file").as_string(), "good.json");
    EXPECT_EQ(documents[0].at("kind").as_string(), "paywall");
    EXPECT_TRUE(documents[0].at("findings").as_array().empty());
    const boost::json::value& finding = documents[1].at("findings").at(0);
    EXPECT_EQ(finding.at("code").as_string(), "no-steps");
    EXPECT_EQ(finding.at("severity").as_string(), "warning");
    EXPECT_EQ(finding.at("path").as_string(), "");
    EXPECT_EQ(finding.at("line").as_int64(), 1);
    EXPECT_EQ(finding.at("column").as_int64(), 1);
    EXPECT_EQ(finding.at("offset").as_int64(), 0);
    EXPECT_THAT(std::string(finding.at("message").as_string()), HasSubstr("no steps"));
    EXPECT_EQ(run("--format json good.json").status, 0);
}

// Ten mebibytes of steps on a single line, each with findings.
TEST_F(LintProgram, ChecksALargeDocumentInReasonableTime) {
    constexpr std::size_t size = 10UL * 1024 * 1024;
    const std::string step = R"({"type":"basic","heading":"Größe","headingColor":"red","zzz":1})";
    std::string text = "[" + step;
    std::size_t steps = 1;
    while (text.size() < size) {
        text.append(",").append(step);
        ++steps;
    }
    text.append("]");
    folder_.write("large.json", text);
    const auto begin = std::chrono::steady_clock::now();
    const Outcome result = run("large.json");
    const auto duration = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(result.status, 1);
    // Missing: media, button title, title, and the colours of background, title, button and its title.
    EXPECT_THAT(result.output, EndsWith("\n" + std::to_string(8 * steps) + " errors, " +
                                        std::to_string(2 * steps) + " warnings in 1 of 1 document\n"));
    EXPECT_LT(duration, std::chrono::minutes{2}) << "quadratic time would be hours";
}

TEST_F(LintProgram, ChecksALargeTextThatIsNotJson) {
    constexpr std::size_t size = 10UL * 1024 * 1024;
    const Outcome open = run("-", "{\"heading\":\"" + std::string(size, 'x'));
    EXPECT_EQ(open.status, 1);
    EXPECT_THAT(open.output,
                StartsWith("<stdin>:1:" + std::to_string(size + 13) + ": error: not valid JSON: "));
    const Outcome deep = run("-", std::string(size, '['));
    EXPECT_EQ(deep.status, 1);
    EXPECT_THAT(deep.output, HasSubstr("[not-json]"));
}

}  // namespace
}  // namespace vorna::lint
