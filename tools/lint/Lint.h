// SPDX-License-Identifier: Apache-2.0
#pragma once

// Judges a document that describes a paywall or an onboarding. Knows no files: main.cpp reads them, and other
// tools may hand in what they like.

#include <tools/lint/Document.h>
#include <tools/lint/Finding.h>

#include <optional>
#include <string_view>
#include <vector>

namespace vorna::lint {

struct Verdict {
    std::optional<DocumentKind> kind;  // absent when it was not given and the text does not tell
    std::vector<Finding> findings;     // in the order of the text
};

// Without a kind the shape tells it: an object is a paywall, an array an onboarding. Any bytes.
[[nodiscard]] Verdict lint(std::string_view text, std::optional<DocumentKind> kind = std::nullopt);

}  // namespace vorna::lint
