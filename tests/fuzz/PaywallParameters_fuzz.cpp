// SPDX-License-Identifier: Apache-2.0
#include <tests/fuzz/Documents.h>

#include <vorna/documents/PaywallValidation.h>

#include <variant>

using namespace vorna;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    const auto decoded = PaywallParameters::decode(text);
    if (const auto* const paywall = std::get_if<PaywallParameters>(&decoded)) {
        fuzz::requireSorted(missingFields(*paywall));
        const std::string written = std::get<std::string>(encode(*paywall));
        fuzz::require(std::get<PaywallParameters>(PaywallParameters::decode(written)) == *paywall);
    } else {
        fuzz::requireLocated(std::get<json::DecodingError>(decoded), text);
    }
    return 0;
}
