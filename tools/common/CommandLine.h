// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The common parts of every program's command line: --help, --version, mistakes, exit statuses.

#include <vorna/base/Result.h>

#include <functional>
#include <string>
#include <string_view>

namespace CLI {  // NOLINT(readability-identifier-naming): the library's name
class App;
}

namespace vorna::tools {

/// Exit status after a mistake on the command line.
inline constexpr int usageStatus = 2;

/// The program exits without doing its work: after --help or --version, or because of a mistake.
struct EarlyExit {
    int status = 0;
    std::string output;  ///< for standard output if the status is 0, for standard error otherwise
};

/// Adds --version to the options declared in `app`, then parses the command line.
[[nodiscard]] Result<void, EarlyExit> parse(CLI::App& app, int argumentCount, const char* const* arguments);

/// Reports a mistake on the command line that parsing alone does not find; the program's name goes before
/// `text`.
[[nodiscard]] Unexpected<EarlyExit> mistake(const CLI::App& app, std::string_view text);

/// Prints the output and returns the status.
[[nodiscard]] int print(const EarlyExit& exit);

/// Runs the body of main() and returns its status. An exception is printed and becomes `failureStatus`.
[[nodiscard]] int runProgram(std::string_view program, int failureStatus, const std::function<int()>& body);

}  // namespace vorna::tools
