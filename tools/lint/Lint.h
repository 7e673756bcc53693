// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Checks a document that describes a paywall or an onboarding. Works on text; reading files is up to the
/// caller.

#include <tools/lint/Document.h>
#include <tools/lint/Finding.h>

#include <optional>
#include <string_view>
#include <vector>

namespace vorna::lint {

struct Verdict {
    /// std::nullopt if neither given nor evident from the shape.
    std::optional<DocumentKind> kind;
    /// In the order of the text.
    std::vector<Finding> findings;
};

/// By default, an object is a paywall and an array an onboarding. Any bytes.
[[nodiscard]] Verdict lint(std::string_view text, std::optional<DocumentKind> kind = std::nullopt);

}  // namespace vorna::lint
