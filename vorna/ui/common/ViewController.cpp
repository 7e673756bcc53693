// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/ViewController.h>

#include <vorna/ui/common/ViewLoader.h>
#include <vorna/ui/common/Window.h>

#include <QtQml/QQmlEngine>

#include <utility>

namespace vorna::ui {

ViewController::ViewController() {
    // Views refer to their controllers; no engine may ever think that it owns one.
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

ViewController::~ViewController() = default;

const ViewController& ViewController::outermost() const {
    const ViewController* controller = this;
    while (controller->parent_ != nullptr) {
        controller = controller->parent_;
    }
    return *controller;
}

Window* ViewController::window() const {
    return outermost().window_;
}

std::shared_ptr<ViewController> ViewController::presentedViewController() const {
    const Window* const window = this->window();
    return window == nullptr ? nullptr : window->presentedOver(outermost());
}

void ViewController::present(const std::shared_ptr<ViewController>& controller, bool animated,
                             std::function<void()> completion) {
    if (Window* const window = this->window()) {
        window->present(outermost(), controller, animated, std::move(completion));
    } else {
        Window::reportRefusal("the controller to present from is not on show");
    }
}

void ViewController::dismiss(bool animated, std::function<void()> completion) {
    if (Window* const window = this->window()) {
        window->dismiss(outermost(), animated, std::move(completion));
    }
}

QQuickItem* ViewController::loadView(QQuickItem& parent) {
    return loadViewFrom(viewSource(), *this, parent);
}

bool ViewController::contain(ViewController& child) {
    for (const ViewController* container = this; container != nullptr; container = container->parent_) {
        if (container == &child) {
            return false;
        }
    }
    child.parent_ = this;
    return true;
}

bool ViewController::embed(std::shared_ptr<ViewController> child, QQuickItem& parent) {
    if (!child || !contain(*child)) {
        return false;
    }
    child->view_ = child->loadView(parent);
    if (!child->view_) {
        return false;
    }
    embedded_ = std::move(child);
    Q_EMIT embedded_->windowChanged();
    embedded_->viewDidLoad();
    return true;
}

bool ViewController::enter(Window& window, QQuickItem& parent) {
    setWindow(&window);
    view_ = loadView(parent);
    if (!view_) {
        setWindow(nullptr);
        return false;
    }
    viewDidLoad();
    return true;
}

void ViewController::setWindow(Window* window) {
    window_ = window;
    Q_EMIT windowChanged();
}

void ViewController::leave() {
    const std::shared_ptr<ViewController> self = shared_from_this();
    if (view_) {
        // The view refers to this controller until it is gone, which is not now: one of its buttons may be
        // what has led here.
        connect(view_, &QObject::destroyed, this, [self] {});
        view_->setVisible(false);
        view_->deleteLater();
        view_ = nullptr;
    }
    window_ = nullptr;
    if (const std::shared_ptr<ViewController> child = std::exchange(embedded_, nullptr)) {
        child->leave();
    }
    viewDidDisappear();
}

}  // namespace vorna::ui
