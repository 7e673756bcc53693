// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/common/CommandLine.h>
#include <tools/lint/Document.h>
#include <vorna/base/Result.h>

#include <optional>
#include <string>
#include <vector>

namespace vorna::lint {

enum class Format { human, json };

// What the command line asks for.
struct Options {
    std::vector<std::string> files;    // never empty; "-" is standard input
    std::optional<DocumentKind> kind;  // otherwise each document's shape tells
    Format format = Format::human;
};

/// Parses the command line.
[[nodiscard]] Result<Options, tools::EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::lint
