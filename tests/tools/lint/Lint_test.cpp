// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Lint.h>

#include <tests/tools/lint/SampleDocuments.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace vorna::lint {
namespace {

Finding findingAt(std::string_view text, std::string_view path) {
    for (const Finding& finding : lint(text).findings) {
        if (finding.path.text() == path) {
            return finding;
        }
    }
    ADD_FAILURE() << "nothing under " << path << " in " << text;
    return {};
}

json::Position positionOf(std::string_view text, std::string_view path) {
    return findingAt(text, path).position;
}

json::Position at(std::size_t line, std::size_t column) {
    return {line, column};
}

TEST(Lint, InfersTheKindFromTheShape) {
    EXPECT_EQ(lint("{}").kind, DocumentKind::paywall);
    EXPECT_EQ(lint("[]").kind, DocumentKind::onboarding);
    EXPECT_EQ(lint("3").kind, std::nullopt);
    EXPECT_EQ(lint("{").kind, std::nullopt);
}

TEST(Lint, KeepsTheGivenKind) {
    EXPECT_EQ(lint("[]", DocumentKind::paywall).kind, DocumentKind::paywall);
    EXPECT_EQ(lint("{", DocumentKind::onboarding).kind, DocumentKind::onboarding);
}

TEST(Lint, ListsFindingsInTheOrderOfTheText) {
    const auto findings = lint(R"({"zzz":1,"headingColor":"red","aaa":1,"heading":" "})").findings;
    EXPECT_TRUE(
        std::is_sorted(findings.begin(), findings.end(),
                       [](const Finding& one, const Finding& other) { return one.offset < other.offset; }));
    EXPECT_GT(findings.size(), 4U);
}

TEST(Lint, PointsToTheKeyOfAField) {
    const std::string text = "{\n  \"zzz\": 1\n}";
    EXPECT_EQ(positionOf(text, "zzz"), at(2, 3));
    EXPECT_EQ(findingAt(text, "zzz").offset, 4U);
}

TEST(Lint, PointsToTheObjectThatLacksAField) {
    EXPECT_EQ(positionOf("{\n \"paidProducts\": [\n   {}\n]}", "paidProducts[0].price"), at(3, 4));
    EXPECT_EQ(positionOf("[\n {}]", "[0].heading"), at(2, 2));
}

TEST(Lint, PointsToAnElementOfAList) {
    EXPECT_EQ(positionOf(R"({"details":["a", 3]})", "details[1]"), at(1, 18));
}

TEST(Lint, CountsLinesWithWindowsEndings) {
    EXPECT_EQ(positionOf("{\r\n\r\n  \"zzz\": 1,\r\n  \"yyy\": 2\r\n}\r\n", "yyy"), at(4, 3));
}

TEST(Lint, CountsCodePointsInALine) {
    EXPECT_EQ(positionOf(R"({"heading":"Sınırları 😀 kaldır","zzz":1})", "zzz"), at(1, 33));
    EXPECT_EQ(positionOf("{\"şğ\":1,\"zzz\":1}", "zzz"), at(1, 9));
    EXPECT_EQ(findingAt("{\"şğ\":1,\"zzz\":1}", "zzz").offset, 10U);
}

TEST(Lint, LocatesSeveralFindingsOnALine) {
    const std::string text = "{\n \"ü\":1, \"v\":2,\n\"w\":3, \"ö\":4}";
    EXPECT_EQ(positionOf(text, "v"), at(2, 9));
    EXPECT_EQ(positionOf(text, "w"), at(3, 1));
    EXPECT_EQ(findingAt(text, R"(["ö"])").position, at(3, 8));
}

TEST(Lint, PointsToTheFirstCharacterThatIsNotJson) {
    const Verdict verdict = lint("{\r\n  \"şapka\": 1,,\r\n}");
    ASSERT_EQ(verdict.findings.size(), 1U);
    EXPECT_EQ(verdict.findings[0].position, at(2, 14));
    EXPECT_EQ(verdict.findings[0].offset, 17U);
}

TEST(Lint, PointsToTheEndOfATruncatedText) {
    const Verdict verdict = lint("{\"heading\":\n");
    ASSERT_EQ(verdict.findings.size(), 1U);
    EXPECT_EQ(verdict.findings[0].position, at(2, 1));
    EXPECT_EQ(verdict.findings[0].offset, 12U);
}

// A truncated document is not JSON, and reported as such.
TEST(Lint, ReportsEveryTruncationOfADocument) {
    const std::string whole = onboarding(R"({"details":["Sınırları 😀"],"zzz":[{"a":[null]}]})");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Verdict verdict = lint(std::string_view(whole).substr(0, length));
        ASSERT_EQ(verdict.findings.size(), 1U) << length;
        EXPECT_EQ(verdict.findings[0].code, "not-json") << length;
        EXPECT_LE(verdict.findings[0].offset, length);
    }
    EXPECT_GT(lint(whole).findings.size(), 0U);
}

TEST(Lint, HandlesEveryByteInEveryPosition) {
    const std::string whole = R"({"paidProducts":[{"price":"1"}],"details":["a"],"exitButtonDelay":-1})";
    for (std::size_t place = 0; place < whole.size(); ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = whole;
            changed[place] = static_cast<char>(byte);
            for (const Finding& finding : lint(changed).findings) {
                ASSERT_LE(finding.offset, changed.size());
                ASSERT_GE(finding.position.line, 1U);
                ASSERT_GE(finding.position.column, 1U);
            }
        }
    }
}

}  // namespace
}  // namespace vorna::lint
