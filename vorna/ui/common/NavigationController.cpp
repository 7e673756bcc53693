#include <vorna/ui/common/NavigationController.h>

#include <utility>

namespace vorna::ui {

NavigationController::NavigationController(Answer topViewController)
    : answer_(std::move(topViewController)) {}

NavigationController::NavigationController(std::shared_ptr<ViewController> rootViewController)
    : answer_([controller = std::move(rootViewController)] { return controller; }) {}

std::shared_ptr<ViewController> NavigationController::topViewController() {
    std::shared_ptr<ViewController> controller = answer_ ? answer_() : nullptr;
    return controller && contain(*controller) ? controller : nullptr;
}

std::shared_ptr<ViewController> NavigationController::visibleViewController() {
    if (std::shared_ptr<ViewController> presented = presentedViewController()) {
        return presented;
    }
    return topViewController();
}

}  // namespace vorna::ui
