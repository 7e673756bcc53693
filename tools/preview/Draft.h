// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The document being written.

#include <tools/lint/Lint.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vorna::preview {

/// A snapshot of the document in its file, with its findings.
struct Draft {
    std::string text;
    lint::Verdict verdict;
    std::size_t steps = 0;  ///< 0 unless an onboarding

    /// Whether errors keep any of its screens from being shown.
    [[nodiscard]] bool hasErrors() const;
};

/// Checks the document.
[[nodiscard]] Draft check(std::string text, std::optional<lint::DocumentKind> kind);

/// The media service in the example documents.
inline constexpr std::string_view exampleService = "https://127.0.0.1:8443";

/// Replaces the examples' media service in the text, unless `service` is empty.
[[nodiscard]] std::string withMediaService(std::string text, std::string_view service);

}  // namespace vorna::preview
