// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/OnboardingValidation.h>

#include <vorna/documents/DocumentCoding.h>
#include <vorna/documents/StepKind.h>

namespace vorna {

std::vector<MissingField> missingFields(const OnboardingStepsParameters& step) {
    return document::missingFields(step, stepKindOf(step.type) == StepKind::paywall);
}

std::vector<std::string> validate(const OnboardingStepsParameters& step) {
    return document::printed(missingFields(step));
}

}  // namespace vorna
