// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/PaywallValidation.h>

#include <vorna/documents/DocumentCoding.h>

namespace vorna {

std::vector<MissingField> missingFields(const PaywallParameters& paywall) {
    return document::missingFields(paywall, true);
}

std::vector<std::string> validate(const PaywallParameters& paywall) {
    return document::printed(missingFields(paywall));
}

}  // namespace vorna
