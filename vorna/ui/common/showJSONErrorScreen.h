// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows what a document lacks, over whatever is on show.

#include <string>
#include <string_view>
#include <vector>

namespace vorna::ui {

/// "⚠️ TITLE JSON Hatası:", an empty line, and the message, full screen and animated; a log line where
/// there is nothing to show it over. Main thread.
void showJSONErrorScreen(std::string_view title, std::string_view message);

/// The message for the names of missing fields.
std::string missingFieldsMessage(const std::vector<std::string>& names);

}  // namespace vorna::ui
