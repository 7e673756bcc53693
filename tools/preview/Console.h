// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Output of the program in addition to tools/common/Console.h.

#include <tools/lint/Lint.h>

#include <string>

namespace vorna::preview {

inline constexpr const char* programName = "vorna-preview";

void printError(const std::string& message);

/// Prints the same as `vorna-lint` for the document.
void printFindings(const std::string& file, const lint::Verdict& verdict);

}  // namespace vorna::preview
