// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The kinds of onboarding step.

#include <vorna/documents/DocumentField.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace vorna {

/// Switch over it without a default, so that the compiler finds every place that a new kind affects.
enum class StepKind : std::uint8_t { basic, paywall };

/// Returns the kind that a step's `type` names exactly, or std::nullopt if it names none.
[[nodiscard]] constexpr std::optional<StepKind> stepKindOf(std::string_view type) noexcept {
    if (type == basicStep) {
        return StepKind::basic;
    }
    if (type == paywallStep) {
        return StepKind::paywall;
    }
    return std::nullopt;
}

}  // namespace vorna
