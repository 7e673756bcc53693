// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vorna/json/Position.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vorna::lint {

enum class Severity {
    error,    // the screen will not be shown
    warning,  // it will be shown, but not as its author meant it
};

// "error", "warning".
[[nodiscard]] std::string_view name(Severity severity) noexcept;

// One thing that is wrong with a document.
struct Finding {
    std::string_view code;  // of the rule that found it; lives as long as the program
    Severity severity = Severity::error;
    std::string path;        // of the field, as in "paidProducts[1].price"; empty for the whole document
    std::size_t offset = 0;  // where it stands in the text, in bytes from 0
    json::Position position;
    std::string message;  // what will happen and what to do, without the path, on one line
};

}  // namespace vorna::lint
