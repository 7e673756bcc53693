// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Whether a paywall's document has what its screen needs.

#include <vorna/base/Export.h>
#include <vorna/documents/PaywallParameters.h>

#include <string>
#include <vector>

namespace vorna {

/// The names of the fields that are missing, in ascending order of their bytes: those of text that is empty
/// or blank, "details" without a line, "paidProducts (boş)" without a product, and those of products, as in
/// "paidProducts[0].price". Empty when the paywall may be shown. Only presence is judged, not whether a
/// colour is one. Any thread.
VORNA_EXPORT std::vector<std::string> missingFields(const PaywallParameters& paywall);

/// The same, and prints the array on a line of standard output, as in ["heading", "media"], whether or not
/// there is something in it and whatever the `debug` switch says.
VORNA_EXPORT std::vector<std::string> validate(const PaywallParameters& paywall);

}  // namespace vorna
