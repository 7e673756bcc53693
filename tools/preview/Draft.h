// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Lint.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vorna::preview {

/// A document as it stood in its file at one moment, with what is wrong with it.
struct Draft {
    std::string text;
    lint::Verdict verdict;
    std::size_t steps = 0;  ///< of an onboarding

    /// Some screen of it is not shown.
    [[nodiscard]] bool hasErrors() const;
};

[[nodiscard]] Draft check(std::string text, std::optional<lint::DocumentKind> kind);

/// What the file holds.
struct Unreadable {
    std::string reason;
};

[[nodiscard]] std::variant<std::string, Unreadable> contents(const std::string& file);

/// Where the example documents say that their media are.
inline constexpr std::string_view exampleService = "https://127.0.0.1:8443";

/// The text with media of the examples' service taken from another, unless that is empty.
[[nodiscard]] std::string withMediaService(std::string text, std::string_view service);

}  // namespace vorna::preview
