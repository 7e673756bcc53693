// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Draft.h>

#include <algorithm>
#include <utility>

namespace vorna::preview {

bool Draft::hasErrors() const {
    return std::any_of(verdict.findings.begin(), verdict.findings.end(), [](const lint::Finding& finding) {
        return finding.severity == lint::Severity::error;
    });
}

Draft check(std::string text, std::optional<lint::DocumentKind> kind) {
    Draft draft{std::move(text), {}, 0};
    draft.verdict = lint::lint(draft.text, kind);
    if (draft.verdict.kind == lint::DocumentKind::onboarding) {
        draft.steps = lint::Document(draft.text, kind).screens().size();
    }
    return draft;
}

std::string withMediaService(std::string text, std::string_view service) {
    if (service.empty()) {
        return text;
    }
    while (service.ends_with('/')) {
        service.remove_suffix(1);
    }
    for (std::size_t at = 0; (at = text.find(exampleService, at)) != std::string::npos;
         at += service.size()) {
        text.replace(at, exampleService.size(), service);
    }
    return text;
}

}  // namespace vorna::preview
