// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The fields of all records, without their members.

#include <vorna/documents/DocumentField.h>

#include <span>
#include <string_view>

namespace vorna::lint {

/// The records that documents consist of.
enum class RecordType { paywall, step, product };

/// The library's table of the record's fields.
[[nodiscard]] std::span<const DocumentField> fieldsOf(RecordType type);

/// Null if the record has no such field.
[[nodiscard]] const DocumentField* findField(RecordType type, std::string_view key);

}  // namespace vorna::lint
