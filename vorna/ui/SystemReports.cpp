// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/SystemReports.h>

#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/System.h>
#include <vorna/ui/common/Services.h>
#include <vorna/ui/common/Window.h>

#include <QtCore/QPointer>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vorna::ui {

namespace {

struct Learned {
    std::mutex mutex;
    std::optional<ScreenFacts> screen;
    BundleFacts bundle;
};

Learned& learned() {
    static NeverDestroyed<Learned> value;
    return *value;
}

std::optional<std::string> unlessEmpty(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text.toStdString());
}

/// The desktop file's name is the application's identifier on a Linux desktop; Qt makes one up from the
/// program's name, which identifies nothing.
BundleFacts bundle() {
    BundleFacts facts;
    const QString desktopFile = QGuiApplication::desktopFileName();
    if (desktopFile.contains(u'.')) {
        facts.identifier = unlessEmpty(desktopFile);
    }
    facts.shortVersion = unlessEmpty(QGuiApplication::applicationVersion());
    return facts;
}

void learn() {
    const Window* const window = Window::keyWindow();
    if (window == nullptr || window->quickWindow() == nullptr) {
        return;
    }
    const QSizeF size = window->screenSize();
    {
        const std::scoped_lock lock(learned().mutex);
        learned().screen =
            ScreenFacts{size.width(), size.height(), window->quickWindow()->effectiveDevicePixelRatio()};
        learned().bundle = bundle();
    }
    systemReports::send();
}

}  // namespace

void systemReports::follow(Window& window) {
    static std::vector<QPointer<Window>> followed;
    std::erase_if(followed, [](const QPointer<Window>& gone) { return gone.isNull(); });
    if (std::find(followed.begin(), followed.end(), &window) == followed.end()) {
        followed.emplace_back(&window);
        QObject::connect(&window, &Window::screenChanged, &window, learn);
    }
    learn();
}

void systemReports::send() {
    const std::shared_ptr<System> system = services::get().system;
    if (!system) {
        return;
    }
    const std::scoped_lock lock(learned().mutex);
    if (learned().screen) {
        system->setScreen(*learned().screen);
        system->supplyBundle(learned().bundle);
    }
}

}  // namespace vorna::ui
