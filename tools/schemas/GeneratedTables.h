// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorna::schemas {

// A Markdown text with its tables brought up to date. A table stands between two lines of their own:
//     <!-- table: paywall -->
//     <!-- end of table -->
// and its name is one of "paywall", "step", "product" (the fields of that record) and "findings" (the codes
// of vorna-lint). Absent when a name is none of these or a table does not end.
[[nodiscard]] std::optional<std::string> withGeneratedTables(std::string_view markdown);

}  // namespace vorna::schemas
