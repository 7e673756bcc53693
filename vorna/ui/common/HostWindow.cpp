// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/HostWindow.h>

#include <QtGui/QScreen>
#include <QtQuick/QQuickWindow>

namespace vorna::ui {

HostWindow::HostWindow(QQuickWindow& quickWindow) : quickWindow_(&quickWindow) {
    connect(&quickWindow, &QQuickWindow::widthChanged, this, &HostWindow::screenChanged);
    connect(&quickWindow, &QQuickWindow::heightChanged, this, &HostWindow::screenChanged);
    connect(&quickWindow, &QQuickWindow::visibilityChanged, this, &HostWindow::screenChanged);
    connect(&quickWindow, &QQuickWindow::screenChanged, this, &HostWindow::screenChanged);
}

HostWindow::~HostWindow() = default;

QQuickWindow* HostWindow::quickWindow() const {
    // Not qobject_cast: the meta-object of a window created in QML remains that of a window to the very end.
    return dynamic_cast<QQuickWindow*>(quickWindow_.data());
}

QSizeF HostWindow::screenSize() const {
    const QQuickWindow* const window = quickWindow();
    if (window == nullptr) {
        return {};
    }
    const QWindow::Visibility visibility = window->visibility();
    const bool fillsScreen = visibility == QWindow::FullScreen || visibility == QWindow::Maximized;
    if (fillsScreen && window->screen() != nullptr) {
        return window->screen()->geometry().size();
    }
    return window->size();
}

void HostWindow::setSafeAreaInsets(const QMarginsF& insets) {
    if (insets != safeAreaInsets_) {
        safeAreaInsets_ = insets;
        Q_EMIT safeAreaInsetsChanged();
    }
}

}  // namespace vorna::ui
