// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Checks that a step of an onboarding has everything its screen needs.

#include <vorna/base/Export.h>
#include <vorna/documents/MissingField.h>
#include <vorna/documents/OnboardingStepsParameters.h>

#include <string>
#include <vector>

namespace vorna {

/// Returns every text that is empty or blank; a type that is not exactly "basic" or "paywall"; and on a
/// paywall step an empty "paidProducts", or the blank texts of each product. Empty if the step can be shown.
/// Any thread.
VORNA_EXPORT std::vector<MissingField> missingFields(const OnboardingStepsParameters& step);

/// Returns the sorted names of the missing fields (see `listedNames`), and prints them as an array on a line
/// of standard output, as in ["heading", "media"], even if there are none and regardless of `debug`.
VORNA_EXPORT std::vector<std::string> validate(const OnboardingStepsParameters& step);

}  // namespace vorna
