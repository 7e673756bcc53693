// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Findings as text, for people and for programs.

#include <tools/lint/Finding.h>
#include <tools/lint/Lint.h>

#include <span>
#include <string>

namespace vorna::lint {

/// The verdict on a file, under the name that was given on the command line.
struct CheckedDocument {
    std::string file;
    Verdict verdict;
};

/// A line for each finding, "file:line:column: severity: path: message [code]", and one with the totals;
/// empty without a document.
[[nodiscard]] std::string humanReport(std::span<const CheckedDocument> documents);

/// One JSON object on one line:
///     {"documents":[{"file":"a.json","kind":"paywall","findings":[{"code":"missing-field","severity":"error",
///       "path":"heading","line":1,"column":1,"offset":0,"message":"..."}]}],"errors":1,"warnings":0}
/// "kind" is null if unknown; "offset" is in bytes from 0. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string jsonReport(std::span<const CheckedDocument> documents);

}  // namespace vorna::lint
