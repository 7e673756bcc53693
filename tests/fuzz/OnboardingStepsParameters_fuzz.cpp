// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Documents.h>

#include <vorna/documents/OnboardingValidation.h>

#include <variant>
#include <vector>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Steps = std::vector<OnboardingStepsParameters>;
    const std::string_view text = fuzz::textOf(data, size);
    const auto decoded = decodeOnboardingSteps(text);
    if (const Steps* const steps = std::get_if<Steps>(&decoded)) {
        for (const OnboardingStepsParameters& step : *steps) {
            fuzz::requireSorted(missingFields(step));
        }
        const std::string written = std::get<std::string>(encode(*steps));
        fuzz::require(std::get<Steps>(decodeOnboardingSteps(written)) == *steps);
    } else {
        fuzz::requireLocated(std::get<json::DecodingError>(decoded), text);
    }
    return 0;
}
