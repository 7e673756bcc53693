// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Report.h>

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>

#include <vector>

namespace vorna::lint {
namespace {

const Finding anError{"missing-field", Severity::error, json::Path{"heading"}, 12, {2, 3}, "missing"};
const Finding aWarning{"no-steps", Severity::warning, {}, 0, {1, 1}, "no steps"};

CheckedDocument document(std::string file, std::vector<Finding> findings,
                         std::optional<DocumentKind> kind = DocumentKind::paywall) {
    return {std::move(file), {kind, std::move(findings)}};
}

TEST(HumanReport, HasALineForEachFindingAndASummary) {
    const std::vector documents{document("a.json", {anError, aWarning}), document("b.json", {}),
                                document("c.json", {aWarning, aWarning})};
    EXPECT_EQ(humanReport(documents), "a.json:2:3: error: heading: missing [missing-field]\n"
                                      "a.json:1:1: warning: no steps [no-steps]\n"
                                      "c.json:1:1: warning: no steps [no-steps]\n"
                                      "c.json:1:1: warning: no steps [no-steps]\n"
                                      "1 error, 3 warnings in 2 of 3 documents\n");
}

TEST(HumanReport, ReportsThatThereAreNoFindings) {
    EXPECT_EQ(humanReport(std::vector{document("a.json", {})}), "1 document, no findings\n");
    EXPECT_EQ(humanReport(std::vector{document("a", {}), document("b", {})}), "2 documents, no findings\n");
}

TEST(HumanReport, IsEmptyWithoutADocument) {
    EXPECT_EQ(humanReport({}), "");
}

TEST(HumanReport, KeepsAFindingOnItsLine) {
    Finding finding = anError;
    finding.message = "a\nb\x1b\xff";
    const std::string report = humanReport(std::vector{document("a\nb.json", {finding})});
    EXPECT_EQ(report.substr(0, report.find('\n')),
              "a b.json:2:3: error: heading: a b \xEF\xBF\xBD [missing-field]");
}

TEST(JsonReport, HoldsEverything) {
    const std::string report =
        jsonReport(std::vector{document("a.json", {anError}), document("b.json", {aWarning}, std::nullopt)});
    EXPECT_EQ(report,
              R"({"documents":[{"file":"a.json","kind":"paywall","findings":[{"code":"missing-field",)"
              R"("severity":"error","path":"heading","line":2,"column":3,"offset":12,"message":"missing"}]},)"
              R"({"file":"b.json","kind":null,"findings":[{"code":"no-steps","severity":"warning","path":"",)"
              R"("line":1,"column":1,"offset":0,"message":"no steps"}]}],"errors":1,"warnings":1})"
              "\n");
}

TEST(JsonReport, IsValidJsonForAnyNames) {
    Finding finding = anError;
    finding.path = json::Path{"\xff"};
    const std::string report = jsonReport(std::vector{document("\"\n\xff.json", {finding})});
    const boost::json::value parsed = boost::json::parse(report);
    EXPECT_EQ(parsed.at("documents").at(0).at("file").as_string(), "\"\n\xEF\xBF\xBD.json");
}

TEST(JsonReport, HasAnEmptyListWithoutADocument) {
    EXPECT_EQ(jsonReport({}), "{\"documents\":[],\"errors\":0,\"warnings\":0}\n");
}

}  // namespace
}  // namespace vorna::lint
