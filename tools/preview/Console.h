// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the program prints, in addition to tools/common/Console.h.

#include <tools/lint/Lint.h>

#include <string>

namespace vorna::preview {

inline constexpr const char* programName = "vorna-preview";

void printError(const std::string& message);

/// Prints what `vorna-lint` prints for the document.
void printFindings(const std::string& file, const lint::Verdict& verdict);

}  // namespace vorna::preview
