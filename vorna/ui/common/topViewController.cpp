// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/topViewController.h>

#include <vorna/ui/common/NavigationController.h>
#include <vorna/ui/common/TabBarController.h>
#include <vorna/ui/common/Window.h>

#include <utility>

namespace vorna::ui {

std::shared_ptr<ViewController> topViewController(std::shared_ptr<ViewController> candidate) {
    while (candidate) {
        if (auto* const navigation = qobject_cast<NavigationController*>(candidate.get())) {
            candidate = navigation->visibleViewController();
            continue;
        }
        if (auto* const tabs = qobject_cast<TabBarController*>(candidate.get())) {
            if (std::shared_ptr<ViewController> selected = tabs->selectedViewController()) {
                candidate = std::move(selected);
                continue;
            }
        }
        std::shared_ptr<ViewController> presented = candidate->presentedViewController();
        if (!presented) {
            break;
        }
        candidate = std::move(presented);
    }
    return candidate;
}

std::shared_ptr<ViewController> topViewController() {
    const Window* const window = Window::keyWindow();
    return window == nullptr ? nullptr : topViewController(window->rootViewController());
}

}  // namespace vorna::ui
