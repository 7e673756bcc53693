// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/TabBarController.h>

#include <utility>

namespace vorna::ui {

TabBarController::TabBarController(Answer selectedViewController)
    : answer_(std::move(selectedViewController)) {}

std::shared_ptr<ViewController> TabBarController::selectedViewController() {
    std::shared_ptr<ViewController> controller = answer_ ? answer_() : nullptr;
    return controller && contain(*controller) ? controller : nullptr;
}

}  // namespace vorna::ui
