// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Document.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vorna::lint {

enum class Format { human, json };

// What the command line asks for.
struct Options {
    std::vector<std::string> files;    // never empty; "-" is standard input
    std::optional<DocumentKind> kind;  // otherwise each document's shape tells
    Format format = Format::human;
};

// The program ends here: after --help and the like, or because of a mistake on the command line.
struct EarlyExit {
    int status = 0;
    std::string output;  // for standard output when the status is 0, for standard error otherwise
};

[[nodiscard]] std::variant<Options, EarlyExit> readOptions(int argumentCount, const char* const* arguments);

}  // namespace vorna::lint
