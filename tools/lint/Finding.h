// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A problem found in a document.

#include <vorna/json/Path.h>
#include <vorna/json/Position.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vorna::lint {

enum class Severity {
    /// The screen is not shown.
    error,
    /// It is shown, but not as its author meant it.
    warning,
};

/// "error" or "warning".
[[nodiscard]] std::string_view name(Severity severity) noexcept;

struct Finding {
    /// The rule's; a constant of the program.
    std::string_view code;
    Severity severity = Severity::error;
    /// Empty for the whole document.
    json::Path path;
    /// In bytes from 0.
    std::size_t offset = 0;
    json::Position position;
    /// What is wrong, what happens and what to do about it, without the path, on one line.
    std::string message;
};

}  // namespace vorna::lint
