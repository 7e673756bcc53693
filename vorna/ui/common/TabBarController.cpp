// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/TabBarController.h>

#include <utility>

namespace vorna::ui {

TabBarController::TabBarController(Source selectedViewController)
    : selectedViewController_(std::move(selectedViewController)) {}

std::shared_ptr<ViewController> TabBarController::selectedViewController() {
    std::shared_ptr<ViewController> controller =
        selectedViewController_ ? selectedViewController_() : nullptr;
    return controller && contain(*controller) ? controller : nullptr;
}

}  // namespace vorna::ui
