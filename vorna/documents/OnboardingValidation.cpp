// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/OnboardingValidation.h>

#include <vorna/documents/DocumentCoding.h>
#include <vorna/documents/StepKind.h>

namespace vorna {

std::vector<std::string> missingFields(const OnboardingStepsParameters& step) {
    return document::missingFields(step, stepKindOf(step.type) == StepKind::paywall);
}

std::vector<std::string> validate(const OnboardingStepsParameters& step) {
    std::vector<std::string> names = missingFields(step);
    document::print(names);
    return names;
}

}  // namespace vorna
