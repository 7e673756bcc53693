// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Finding.h>
#include <tools/lint/Lint.h>

#include <span>
#include <string>

namespace vorna::lint {

// A document that has been checked, under the name it was asked for by.
struct CheckedDocument {
    std::string file;
    Verdict verdict;
};

// A line for each finding, "file:line:column: severity: path: message [code]", and one line that counts them;
// nothing for no document.
[[nodiscard]] std::string humanReport(std::span<const CheckedDocument> documents);

// One JSON object on one line:
//     {"documents":[{"file":"a.json","kind":"paywall","findings":[{"code":"missing-field","severity":"error",
//       "path":"heading","line":1,"column":1,"offset":0,"message":"..."}]}],"errors":1,"warnings":0}
// "kind" is null where the text does not tell; "offset" counts bytes from 0. Bytes that are not UTF-8 stand
// as U+FFFD.
[[nodiscard]] std::string jsonReport(std::span<const CheckedDocument> documents);

}  // namespace vorna::lint
