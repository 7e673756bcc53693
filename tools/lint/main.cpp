// SPDX-License-Identifier: Apache-2.0
#include <tools/common/CommandLine.h>
#include <tools/common/Console.h>
#include <tools/common/Files.h>
#include <tools/lint/Lint.h>
#include <tools/lint/Options.h>
#include <tools/lint/Report.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

using namespace vorna::lint;

constexpr const char* programName = "vorna-lint";
constexpr int findingsStatus = 1;
constexpr int unreadableStatus = 2;

int check(const Options& options) {
    std::vector<CheckedDocument> documents;
    bool unreadable = false;
    for (const std::string& file : options.files) {
        const bool isInput = file == "-";
        const auto text = isInput ? vorna::tools::readStandardInput() : vorna::tools::readFile(file);
        if (!text) {
            vorna::tools::printError(programName, file + ": " + text.error().message());
            unreadable = true;
            continue;
        }
        documents.push_back({isInput ? "<stdin>" : file, lint(*text, options.kind)});
    }
    std::cout << (options.format == Format::json ? jsonReport(documents) : humanReport(documents))
              << std::flush;
    if (unreadable || !std::cout) {
        return unreadableStatus;
    }
    const bool clean = std::all_of(documents.begin(), documents.end(), [](const CheckedDocument& document) {
        return document.verdict.findings.empty();
    });
    return clean ? 0 : findingsStatus;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    return vorna::tools::runProgram(programName, unreadableStatus, [&] {
        const auto options = readOptions(argumentCount, arguments);
        return options ? check(*options) : vorna::tools::print(options.error());
    });
}
