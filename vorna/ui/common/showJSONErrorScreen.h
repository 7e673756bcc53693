// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Shows what is missing from a document, over all other screens.

#include <string>
#include <string_view>
#include <vector>

namespace vorna::ui {

/// Presents "⚠️ TITLE JSON Hatası:", an empty line and the message, full screen and animated. Logs a
/// line if there is no controller to present it from. Main thread.
void showJSONErrorScreen(std::string_view title, std::string_view message);

/// The message that lists missing fields.
std::string missingFieldsMessage(const std::vector<std::string>& names);

}  // namespace vorna::ui
