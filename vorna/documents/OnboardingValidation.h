// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Whether a step of an onboarding has what its screen needs.

#include <vorna/base/Export.h>
#include <vorna/documents/OnboardingStepsParameters.h>

#include <string>
#include <vector>

namespace vorna {

/// The names of the fields that are missing or wrong, in ascending order of their bytes: those of text that
/// is empty or blank; "type (geçersiz)" for a type that is neither "basic" nor "paywall", letter for letter;
/// and for a paywall step "paidProducts (boş)" without a product, and those of products, as in
/// "paidProducts[0].price". Empty when the step may be shown. Any thread.
VORNA_EXPORT std::vector<std::string> missingFields(const OnboardingStepsParameters& step);

/// The same, and prints the array on a line of standard output, as in ["heading", "media"], whether or not
/// there is something in it and whatever the `debug` switch says.
VORNA_EXPORT std::vector<std::string> validate(const OnboardingStepsParameters& step);

}  // namespace vorna
