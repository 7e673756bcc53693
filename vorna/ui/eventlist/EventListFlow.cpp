// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/eventlist/EventListFlow.h>

#include <vorna/platform/Log.h>
#include <vorna/ui/common/NavigationController.h>
#include <vorna/ui/common/Services.h>
#include <vorna/ui/common/topViewController.h>
#include <vorna/ui/eventlist/EventListViewController.h>

#include <memory>

namespace vorna::ui {

void EventListFlow::showEventList() {
    const std::shared_ptr<ViewController> top = topViewController();
    if (!top) {
        log::debug({"❌ Failed to find top view controller"});
        return;
    }
    const std::shared_ptr<ViewController> list =
        std::make_shared<EventListViewController>(services::get().eventListManager);
    const auto navigation = std::make_shared<NavigationController>(list);
    navigation->modalPresentationStyle = ModalPresentationStyle::fullScreen;
    top->present(navigation, true);
}

void EventListFlow::closeEventList() {
    if (const std::shared_ptr<ViewController> top = topViewController()) {
        top->dismiss(true);
    }
}

}  // namespace vorna::ui
