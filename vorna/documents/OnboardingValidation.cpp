// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/OnboardingValidation.h>

#include <vorna/documents/DocumentCoding.h>

namespace vorna {

std::vector<MissingField> missingFields(const OnboardingStepsParameters& step) {
    return document::missingFields(step, step.type == paywallStep);
}

std::vector<std::string> validate(const OnboardingStepsParameters& step) {
    return document::printed(missingFields(step));
}

}  // namespace vorna
