// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/OnboardingValidation.h>

#include <vorna/documents/DocumentCoding.h>

namespace vorna {

std::vector<std::string> missingFields(const OnboardingStepsParameters& step) {
    return document::missingFields(step, step.type == paywallStep);
}

std::vector<std::string> validate(const OnboardingStepsParameters& step) {
    std::vector<std::string> names = missingFields(step);
    document::print(names);
    return names;
}

}  // namespace vorna
