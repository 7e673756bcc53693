// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The descriptions of all fields.

#include <tools/lint/Fields.h>

#include <span>
#include <string_view>

namespace vorna::schemas {

using lint::RecordType;

/// One or two sentences for the author of a document, as in docs/documents.md.
struct FieldText {
    RecordType record = RecordType::paywall;
    std::string_view key;
    std::string_view text;
};

[[nodiscard]] std::span<const FieldText> fieldTexts() noexcept;

/// Empty for an unknown field.
[[nodiscard]] std::string_view fieldText(RecordType record, std::string_view key) noexcept;

}  // namespace vorna::schemas
