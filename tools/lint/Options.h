// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The command line of vorna-lint.

#include <tools/lint/Document.h>

#include <vorna/base/Result.h>

#include <optional>
#include <string>
#include <vector>

namespace vorna::lint {

enum class Format { human, json };

struct Options {
    /// Never empty; "-" is standard input.
    std::vector<std::string> files;
    /// By default, that of each document's shape.
    std::optional<DocumentKind> kind;
    Format format = Format::human;
};

/// The program exits early: after --help and the like, or because of a usage error.
struct EarlyExit {
    int status = 0;
    /// For standard output if the status is 0, for standard error otherwise.
    std::string output;
};

[[nodiscard]] Result<Options, EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::lint
