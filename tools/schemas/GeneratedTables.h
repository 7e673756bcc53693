// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The generated tables of docs/documents.md.

#include <optional>
#include <string>
#include <string_view>

namespace vorna::schemas {

/// A Markdown text with its tables updated. A table is between two lines
///     <!-- table: paywall -->
///     <!-- end of table -->
/// and its name is "paywall", "step" or "product" (the fields of that record) or "findings" (the codes of
/// vorna-lint). std::nullopt for an unknown name or a table without an end.
[[nodiscard]] std::optional<std::string> withGeneratedTables(std::string_view markdown);

}  // namespace vorna::schemas
