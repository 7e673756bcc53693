// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Checks that a paywall has everything its screen needs.

#include <vorna/base/Export.h>
#include <vorna/documents/MissingField.h>
#include <vorna/documents/PaywallParameters.h>

#include <string>
#include <vector>

namespace vorna {

/// Returns every text that is empty or blank, an empty "details" or "paidProducts", and the blank texts of
/// each product. Empty if the paywall can be shown. Only presence counts, not whether a colour is valid. Any
/// thread.
VORNA_EXPORT std::vector<MissingField> missingFields(const PaywallParameters& paywall);

/// Returns the sorted names of the missing fields (see `listedNames`), and prints them as an array on a line
/// of standard output, as in ["heading", "media"], even if there are none and regardless of `debug`.
VORNA_EXPORT std::vector<std::string> validate(const PaywallParameters& paywall);

}  // namespace vorna
