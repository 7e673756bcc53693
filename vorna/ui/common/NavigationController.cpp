// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/NavigationController.h>

#include <vorna/ui/common/ViewLoader.h>

#include <utility>

namespace vorna::ui {

NavigationController::NavigationController(Source topViewController)
    : topViewController_(std::move(topViewController)) {}

NavigationController::NavigationController(std::shared_ptr<ViewController> rootViewController)
    : topViewController_([controller = std::move(rootViewController)] { return controller; }) {}

std::shared_ptr<ViewController> NavigationController::topViewController() {
    std::shared_ptr<ViewController> controller = topViewController_ ? topViewController_() : nullptr;
    return controller && contain(*controller) ? controller : nullptr;
}

std::shared_ptr<ViewController> NavigationController::visibleViewController() {
    if (std::shared_ptr<ViewController> presented = presentedViewController()) {
        return presented;
    }
    return topViewController();
}

QString NavigationController::barTitle() {
    const std::shared_ptr<ViewController> top = topViewController();
    return top ? top->title() : QString();
}

QString NavigationController::leftBarButtonText() {
    const std::shared_ptr<ViewController> top = topViewController();
    return top ? top->leftBarButtonTitle() : QString();
}

void NavigationController::leftBarButtonPressed() {
    if (const std::shared_ptr<ViewController> top = topViewController()) {
        top->leftBarButtonTapped();
    }
}

QUrl NavigationController::viewSource() const {
    return viewFile("common/NavigationView.qml");
}

QQuickItem* NavigationController::loadView(QQuickItem& parent) {
    QQuickItem* const view = ViewController::loadView(parent);
    auto* const content = view == nullptr ? nullptr : view->findChild<QQuickItem*>(QStringLiteral("content"));
    if (content != nullptr) {
        embed(topViewController(), *content);
    }
    return view;
}

}  // namespace vorna::ui
