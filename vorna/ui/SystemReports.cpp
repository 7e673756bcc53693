// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/SystemReports.h>

#include <vorna/ui/common/Services.h>
#include <vorna/ui/common/WindowRegistry.h>

#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

#include <memory>
#include <string>

namespace vorna::ui {

namespace {

std::optional<std::string> unlessEmpty(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text.toStdString());
}

/// On a Linux desktop the desktop file's name is the application's identifier. Qt's default is derived from
/// the program's name and identifies nothing; it has no dot.
BundleFacts bundle() {
    BundleFacts facts;
    const QString desktopFile = QGuiApplication::desktopFileName();
    if (desktopFile.contains(u'.')) {
        facts.identifier = unlessEmpty(desktopFile);
    }
    facts.shortVersion = unlessEmpty(QGuiApplication::applicationVersion());
    return facts;
}

}  // namespace

void SystemReports::follow(HostWindow& window) {
    connect(&window, &HostWindow::screenChanged, this, &SystemReports::update, Qt::UniqueConnection);
    update();
}

void SystemReports::update() {
    const HostWindow* const window = WindowRegistry::shared().key();
    if (window == nullptr || window->quickWindow() == nullptr) {
        return;
    }
    const QSizeF size = window->screenSize();
    {
        const std::scoped_lock lock(mutex_);
        screen_ =
            ScreenFacts{size.width(), size.height(), window->quickWindow()->effectiveDevicePixelRatio()};
        bundle_ = bundle();
    }
    send();
}

void SystemReports::send() {
    const std::shared_ptr<System> system = services::get().system;
    if (!system) {
        return;
    }
    const std::scoped_lock lock(mutex_);
    if (screen_) {
        system->setScreen(*screen_);
        system->supplyBundle(bundle_);
    }
}

}  // namespace vorna::ui
