// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/lint/Fields.h>

#include <span>
#include <string_view>

namespace vorna::schemas {

using lint::RecordType;

// What a field is for, in the words of docs/documents.md: one or two sentences for the author of a document.
struct FieldText {
    RecordType record = RecordType::paywall;
    std::string_view key;
    std::string_view text;
};

[[nodiscard]] std::span<const FieldText> fieldTexts() noexcept;

// Empty for a field that nobody has described.
[[nodiscard]] std::string_view fieldText(RecordType record, std::string_view key) noexcept;

}  // namespace vorna::schemas
