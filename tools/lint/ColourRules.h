// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Rules about colours: whether they are valid, present, and contrast enough with their background.

#include <tools/lint/Rules.h>

namespace vorna::lint {

void findUnreadableColours(const Document& document, Reporter& reporter);
void findStrayCharactersInColours(const Document& document, Reporter& reporter);
void findMissingColours(const Document& document, Reporter& reporter);
void findLowContrasts(const Document& document, Reporter& reporter);

}  // namespace vorna::lint
