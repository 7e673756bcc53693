// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Document.h>

#include <string>

namespace vorna::schemas {

// The JSON Schema (2020-12) of a kind of document, as a text with line breaks. It accepts what the library
// decodes; its definition "shown" accepts what leads to a screen rather than to the error screen.
[[nodiscard]] std::string schema(lint::DocumentKind kind);

}  // namespace vorna::schemas
