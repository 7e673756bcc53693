// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/DeviceWindow.h>

#include <tools/preview/Board.h>
#include <tools/preview/QmlObject.h>
#include <vorna/ui/attach.h>

#include <QtGui/QGuiApplication>

namespace vorna::preview {

namespace {

constexpr int largestSide = 1 << 20;

}  // namespace

DeviceWindow::DeviceWindow(QQmlEngine& engine, Board& board)
    : quickWindow_(makeFromQml<QQuickWindow>(engine, QStringLiteral("DeviceWindow.qml"),
                                             {{QStringLiteral("board"), QVariant::fromValue(&board)}})),
      window_(&ui::attach(*quickWindow_)) {}

void DeviceWindow::resizeTo(const Device& device, bool hasSafeArea) {
    // Without a window manager sizes have no limits.
    const bool hasLimits = QGuiApplication::platformName() != u"offscreen";
    if (hasLimits) {
        quickWindow_->setMinimumSize({});
        quickWindow_->setMaximumSize({largestSide, largestSide});
    }
    quickWindow_->resize(device.size);
    if (hasLimits) {
        quickWindow_->setMinimumSize(device.size);
        quickWindow_->setMaximumSize(device.size);
    }
    window_->setSafeAreaInsets(hasSafeArea ? QMarginsF(device.safeArea) : QMarginsF());
}

}  // namespace vorna::preview
