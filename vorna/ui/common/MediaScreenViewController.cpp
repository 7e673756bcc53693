// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/MediaScreenViewController.h>

#include <vorna/ui/common/Window.h>

#include <QtQuick/QQuickWindow>

#include <cmath>

namespace vorna::ui {

double MediaScreenViewController::firstWindowSafeAreaTop() const {
    const Window* const first = Window::firstWindow();
    return first == nullptr ? 0 : first->safeAreaTop();
}

void MediaScreenViewController::startMedia(const std::string& mediaURL) {
    const double scale = window()->quickWindow()->effectiveDevicePixelRatio();
    media_.start(mediaURL, static_cast<int>(std::ceil(window()->screenWidth() * scale)));
    if (const Window* const first = Window::firstWindow()) {
        connect(first, &Window::safeAreaInsetsChanged, this,
                &MediaScreenViewController::firstWindowSafeAreaTopChanged);
    }
}

void MediaScreenViewController::showExitButtonAfter(std::int64_t seconds) {
    exitButton_ = DelayedTask(seconds, [this] {
        isExitButtonShown_ = true;
        Q_EMIT exitButtonShown();
    });
}

void MediaScreenViewController::viewDidDisappear() {
    exitButton_ = {};
    media_.stop();
}

}  // namespace vorna::ui
