// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Console.h>

#include <tools/lint/Report.h>

#include <array>
#include <iostream>

namespace vorna::preview::console {

void say(const std::string& line) {
    std::cout << line << std::endl;
}

void complain(const std::string& line) {
    std::cerr << "vorna-preview: " << line << std::endl;
}

void report(const std::string& file, const lint::Verdict& verdict) {
    const std::array documents{lint::CheckedDocument{file, verdict}};
    std::cout << lint::humanReport(documents) << std::flush;
}

}  // namespace vorna::preview::console
