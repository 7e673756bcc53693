// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What the program prints, a line at a time, so that others can follow it.

#include <tools/lint/Lint.h>

#include <string>

namespace vorna::preview::console {

void say(const std::string& line);

/// On standard error.
void complain(const std::string& line);

/// What `vorna-lint` prints for the document.
void report(const std::string& file, const lint::Verdict& verdict);

}  // namespace vorna::preview::console
