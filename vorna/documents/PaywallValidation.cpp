// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/PaywallValidation.h>

#include <vorna/documents/DocumentCoding.h>

namespace vorna {

std::vector<std::string> missingFields(const PaywallParameters& paywall) {
    return document::missingFields(paywall, true);
}

std::vector<std::string> validate(const PaywallParameters& paywall) {
    std::vector<std::string> names = missingFields(paywall);
    document::print(names);
    return names;
}

}  // namespace vorna
