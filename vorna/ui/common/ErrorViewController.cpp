// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/ErrorViewController.h>

#include <vorna/ui/common/Conversions.h>
#include <vorna/ui/common/ViewLoader.h>

#include <string>

namespace vorna::ui {

ErrorViewController::ErrorViewController(std::string_view title, std::string_view message)
    : text_(toQString("⚠️ " + std::string(title) + " JSON Hatası:\n\n" + std::string(message))) {}

QUrl ErrorViewController::viewSource() const {
    return viewFile("common/ErrorScreenView.qml");
}

}  // namespace vorna::ui
