// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Line-by-line output of a program. Each line is flushed, so that a program reading our output sees it
/// immediately; a reader that has gone away is ignored.

#include <string_view>

namespace vorna::tools {

/// Prints a line on standard output.
void printLine(std::string_view line);

/// Prints "PROGRAM: MESSAGE" on standard error.
void printError(std::string_view program, std::string_view message);

}  // namespace vorna::tools
