// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/WindowRegistry.h>

#include <vorna/ui/common/ScreensRuntime.h>

#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <utility>

namespace vorna::ui {

WindowRegistry& WindowRegistry::shared() {
    return ScreensRuntime::part<WindowRegistry>();
}

HostWindow& WindowRegistry::add(std::unique_ptr<HostWindow> window) {
    HostWindow& added = *windows_.emplace_back(std::move(window));
    QQuickWindow* const quickWindow = added.quickWindow();
    QObject::connect(quickWindow, &QQuickWindow::activeChanged, &added, [this, &added] {
        // Also emitted during destruction.
        if (const QQuickWindow* const own = added.quickWindow(); own != nullptr && own->isActive()) {
            makeKey(added);
        }
    });
    // By then the QQuickWindow is gone, with all items in it.
    QObject::connect(quickWindow, &QObject::destroyed, &added, [this, &added] { remove(added); });
    return added;
}

HostWindow* WindowRegistry::find(const QQuickWindow& quickWindow) const {
    const auto found = std::find_if(windows_.begin(), windows_.end(), [&](const auto& window) {
        return window->quickWindow() == &quickWindow;
    });
    return found == windows_.end() ? nullptr : found->get();
}

HostWindow* WindowRegistry::first() const {
    return windows_.empty() ? nullptr : windows_.front().get();
}

void WindowRegistry::makeKey(HostWindow& window) {
    if (key_ != &window) {
        key_ = &window;
        Q_EMIT window.screenChanged();
    }
}

void WindowRegistry::remove(const HostWindow& window) {
    const auto found = std::find_if(windows_.begin(), windows_.end(),
                                    [&](const auto& other) { return other.get() == &window; });
    // Destroyed last: its screens may ask for the key window while being destroyed.
    const std::unique_ptr<HostWindow> ending = std::move(*found);
    windows_.erase(found);
    if (key_ == &window) {
        key_ = nullptr;
        if (!windows_.empty()) {
            makeKey(*windows_.back());
        }
    }
}

}  // namespace vorna::ui
