// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/showJSONErrorScreen.h>

#include <vorna/platform/Log.h>
#include <vorna/ui/common/ErrorViewController.h>
#include <vorna/ui/common/topViewController.h>

#include <memory>

namespace vorna::ui {

void showJSONErrorScreen(std::string_view title, std::string_view message) {
    const std::shared_ptr<ViewController> top = topViewController();
    if (!top) {
        log::debug({"❌ Hata ekranı gösterilemedi: Top VC bulunamadı."});
        return;
    }
    top->present(std::make_shared<ErrorViewController>(title, message), true);
}

std::string missingFieldsMessage(const std::vector<std::string>& names) {
    std::string message = "Eksik alanlar:";
    for (const std::string& name : names) {
        message += '\n';
        message += name;
    }
    return message;
}

}  // namespace vorna::ui
