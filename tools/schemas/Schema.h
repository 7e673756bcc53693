// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The JSON Schemas of documents.

#include <tools/lint/Document.h>

#include <string>

namespace vorna::schemas {

/// The JSON Schema (2020-12) of a kind of document, on one line. It accepts what the library decodes; its
/// definition "shown" accepts what is shown without an error screen.
[[nodiscard]] std::string schema(lint::DocumentKind kind);

}  // namespace vorna::schemas
