// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Documents.h>

#include <vorna/documents/PaywallValidation.h>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const auto paywall = PaywallParameters::decode(text);
    if (paywall) {
        fuzz::requireDistinct(missingFields(*paywall));
        fuzz::require(PaywallParameters::decode(encode(*paywall).value()) == paywall);
    } else {
        fuzz::requireLocated(paywall.error(), text);
    }
    return 0;
}
