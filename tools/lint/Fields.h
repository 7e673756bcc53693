// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vorna/documents/DocumentField.h>

#include <span>
#include <string_view>

namespace vorna::lint {

// The records that documents are made of.
enum class RecordType { paywall, step, product };

// What the library knows of their fields, in its own order.
[[nodiscard]] std::span<const DocumentField> fieldsOf(RecordType type);

// Null when the record has no such field.
[[nodiscard]] const DocumentField* findField(RecordType type, std::string_view key);

}  // namespace vorna::lint
