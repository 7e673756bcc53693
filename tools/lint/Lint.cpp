// SPDX-License-Identifier: Apache-2.0
#include <tools/lint/Lint.h>

#include <tools/lint/Rules.h>

#include <vorna/json/Position.h>

#include <algorithm>

namespace vorna::lint {

namespace {

/// In one pass over the text, however many findings a line has.
void setPositions(std::string_view text, std::vector<Finding>& sorted) {
    std::size_t passed = 0;
    json::Position position{1, 1};
    for (Finding& finding : sorted) {
        const json::Position next = json::positionAt(text.substr(passed), finding.offset - passed);
        if (next.line == 1) {
            position.column += next.column - 1;
        } else {
            position.line += next.line - 1;
            position.column = next.column;
        }
        passed = finding.offset;
        finding.position = position;
    }
}

}  // namespace

std::string_view name(Severity severity) noexcept {
    return severity == Severity::error ? "error" : "warning";
}

Verdict lint(std::string_view text, std::optional<DocumentKind> kind) {
    const Document document(text, kind);
    Verdict verdict{document.kind(), {}};
    Reporter reporter(document, verdict.findings);
    for (const Rule& rule : rules()) {
        reporter.setRule(rule.code, rule.severity);
        rule.check(document, reporter);
    }
    std::stable_sort(verdict.findings.begin(), verdict.findings.end(),
                     [](const Finding& one, const Finding& other) { return one.offset < other.offset; });
    setPositions(text, verdict.findings);
    return verdict;
}

}  // namespace vorna::lint
