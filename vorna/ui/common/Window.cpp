// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/Window.h>

#include <vorna/ui/common/HostLayer.h>
#include <vorna/ui/common/PresentationChain.h>
#include <vorna/ui/common/ViewLoader.h>
#include <vorna/ui/common/WindowRegistry.h>

#include <QtQuick/QQuickWindow>

#include <utility>

namespace vorna::ui {

Window* Window::keyWindow() {
    return qobject_cast<Window*>(WindowRegistry::shared().key());
}

Window* Window::firstWindow() {
    return qobject_cast<Window*>(WindowRegistry::shared().first());
}

Window& Window::forQuickWindow(QQuickWindow& quickWindow) {
    auto& registry = WindowRegistry::shared();
    HostWindow* const known = registry.find(quickWindow);
    // Only windows of this class are ever added.
    return static_cast<Window&>(known != nullptr ? *known
                                                 : registry.add(std::make_unique<Window>(quickWindow)));
}

Window* Window::of(const ViewController& controller) {
    return qobject_cast<Window*>(controller.window());
}

Window::Window(QQuickWindow& quickWindow)
    : HostWindow(quickWindow),
      engine_(sharedEngine()),
      host_(std::make_unique<HostLayer>(quickWindow)),
      chain_(std::make_unique<PresentationChain>(*this, *host_)) {}

Window::~Window() {
    // Screens being removed may still use this window.
    chain_->removeAll();
}

void Window::makeKey() {
    WindowRegistry::shared().makeKey(*this);
}

std::shared_ptr<ViewController> Window::rootViewController() const {
    return chain_->root();
}

void Window::setRootViewController(std::shared_ptr<ViewController> controller) {
    chain_->setRoot(std::move(controller));
}

void Window::addTransition(Transition transition) {
    chain_->addTransition(std::move(transition));
}

bool Window::isMoving() const {
    return chain_->isMoving();
}

std::vector<std::shared_ptr<ViewController>> Window::presentedViewControllers() const {
    return chain_->presented();
}

}  // namespace vorna::ui
