// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Rules about the structure of a document: whether it is JSON, fields have the right types, and keys are
/// known and complete.

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
