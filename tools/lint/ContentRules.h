// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Rules about the values of fields other than colours: addresses, products, lines, delays.

#include <tools/lint/Rules.h>

namespace vorna::lint {

void findUnreadableAddresses(const Document& document, Reporter& reporter);
void findInsecureAddresses(const Document& document, Reporter& reporter);
void findUnknownSelectedProducts(const Document& document, Reporter& reporter);
void findDuplicateProducts(const Document& document, Reporter& reporter);
void findDetailLinesThatAreCut(const Document& document, Reporter& reporter);
void findNegativeDelays(const Document& document, Reporter& reporter);
void findLongDelays(const Document& document, Reporter& reporter);

}  // namespace vorna::lint
