// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The command line of vorna-lint.

#include <tools/common/CommandLine.h>
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

/// Parses the command line.
[[nodiscard]] Result<Options, tools::EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::lint
