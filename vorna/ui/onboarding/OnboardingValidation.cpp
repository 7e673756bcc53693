#include <vorna/ui/onboarding/OnboardingValidation.h>

#include <vorna/ui/common/DocumentCoding.h>

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
