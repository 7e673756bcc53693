// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/ViewController.h>

#include <vorna/platform/Log.h>
#include <vorna/ui/common/ViewLoader.h>

#include <QtQml/QQmlEngine>

#include <string_view>
#include <utility>

namespace vorna::ui {

namespace {

std::string_view reason(PresentationFailure failure) {
    switch (failure) {
    case PresentationFailure::presenterNotOnScreen:
        return "the presenting controller is not on screen";
    case PresentationFailure::presenterCovered:
        return "another screen covers the presenting controller";
    case PresentationFailure::nothingToPresent:
        return "there is no screen to present";
    case PresentationFailure::alreadyOnScreen:
        return "it is already on screen";
    case PresentationFailure::noView:
        return "its view could not be created";
    }
    return {};
}

}  // namespace

ViewController::ViewController() {
    // Views refer to their controllers; an engine must never assume that it owns one.
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

HostWindow* ViewController::window() const {
    const Presenter* const presenter = outermost().presenter_;
    return presenter == nullptr ? nullptr : &presenter->window();
}

std::shared_ptr<ViewController> ViewController::presentedViewController() const {
    const Presenter* const presenter = outermost().presenter_;
    return presenter == nullptr ? nullptr : presenter->presentedOver(outermost());
}

void ViewController::present(const std::shared_ptr<ViewController>& controller, bool animated,
                             std::function<void()> completion) {
    const ViewController& over = outermost();
    const auto presented = over.presenter_
                               ? over.presenter_->present(over, controller, animated, std::move(completion))
                               : Unexpected(PresentationFailure::presenterNotOnScreen);
    if (!presented) {
        log::debug({"❌ Failed to present a screen: ", reason(presented.error())});
    }
}

void ViewController::dismiss(bool animated, std::function<void()> completion) {
    const ViewController& dismissed = outermost();
    if (dismissed.presenter_) {
        dismissed.presenter_->dismiss(dismissed, animated, std::move(completion));
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

void ViewController::embed(std::shared_ptr<ViewController> child, QQuickItem& parent) {
    if (!child || !contain(*child)) {
        return;
    }
    child->view_ = child->loadView(parent);
    if (!child->view_) {
        return;
    }
    embedded_ = std::move(child);
    Q_EMIT embedded_->windowChanged();
    embedded_->viewDidLoad();
}

void ViewController::becomeRoot(Presenter& presenter) {
    parent_ = nullptr;
    setPresenter(&presenter);
}

void ViewController::resignRoot() {
    setPresenter(nullptr);
}

Result<void, PresentationFailure> ViewController::enter(Presenter& presenter, QQuickItem& layer) {
    setPresenter(&presenter);
    view_ = loadView(layer);
    if (!view_) {
        setPresenter(nullptr);
        return Unexpected(PresentationFailure::noView);
    }
    viewDidLoad();
    return {};
}

void ViewController::setPresenter(Presenter* presenter) {
    presenter_ = presenter;
    Q_EMIT windowChanged();
}

void ViewController::leave() {
    const std::shared_ptr<ViewController> self = shared_from_this();
    if (view_) {
        // The view refers to this controller until it is deleted, and the caller may be one of its buttons.
        connect(view_, &QObject::destroyed, this, [self] {});
        view_->setVisible(false);
        view_->deleteLater();
        view_ = nullptr;
    }
    presenter_ = nullptr;
    if (const std::shared_ptr<ViewController> child = std::exchange(embedded_, nullptr)) {
        child->leave();
    }
    viewDidDisappear();
}

}  // namespace vorna::ui
