// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Console.h>

#include <tools/common/Console.h>
#include <tools/lint/Report.h>

#include <array>
#include <iostream>

namespace vorna::preview {

void printError(const std::string& message) {
    tools::printError(programName, message);
}

void printFindings(const std::string& file, const lint::Verdict& verdict) {
    const std::array documents{lint::CheckedDocument{file, verdict}};
    std::cout << lint::humanReport(documents) << std::flush;
}

}  // namespace vorna::preview
