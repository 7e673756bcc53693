// SPDX-License-Identifier: Apache-2.0
#pragma once

// Rules about the form of a document: is it JSON, has each field the right type, are the keys known and all
// there.

#include <tools/lint/Rules.h>

namespace vorna::lint {

void findTextThatIsNotJson(const Document& document, Reporter& reporter);
void findValueThatIsNoDocument(const Document& document, Reporter& reporter);
void findWrongTypes(const Document& document, Reporter& reporter);
void findUnknownTypesOfSteps(const Document& document, Reporter& reporter);
void findMissingFields(const Document& document, Reporter& reporter);
void findMissingProducts(const Document& document, Reporter& reporter);
void findMissingSteps(const Document& document, Reporter& reporter);
void findUnknownKeys(const Document& document, Reporter& reporter);
void findDuplicateKeys(const Document& document, Reporter& reporter);
void findFieldsNeverShown(const Document& document, Reporter& reporter);

}  // namespace vorna::lint
