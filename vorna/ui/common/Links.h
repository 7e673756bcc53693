// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The two web links at the foot of paid screens.

#include <QtCore/QString>

#include <string_view>

namespace vorna::ui {

/// Opens the address for a link's title, "Terms of Use" or "Privacy Policy", with the desktop's handler. Does
/// nothing for any other title, or for text that is not an address. Main thread.
void openLink(const QString& title, std::string_view termsOfUseURL, std::string_view privacyPolicyURL);

}  // namespace vorna::ui
