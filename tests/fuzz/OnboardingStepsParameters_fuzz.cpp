// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Documents.h>

#include <vorna/documents/OnboardingValidation.h>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const auto steps = decodeOnboardingSteps(text);
    if (steps) {
        for (const OnboardingStepsParameters& step : *steps) {
            fuzz::requireDistinct(missingFields(step));
        }
        fuzz::require(decodeOnboardingSteps(encode(*steps).value()) == steps);
    } else {
        fuzz::requireLocated(steps.error(), text);
    }
    return 0;
}
