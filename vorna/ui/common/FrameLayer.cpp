// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/FrameLayer.h>

#include <QtQml/QQmlEngine>

#include <utility>

namespace vorna::ui {

FrameLayer::FrameLayer(QQuickItem* parent) : ImageLayer(parent) {
    QQmlEngine::setObjectOwnership(&sink_, QQmlEngine::CppOwnership);
    connect(&sink_, &QVideoSink::videoFrameChanged, this, [this](const QVideoFrame& frame) {
        frame_ = frame;
        polish();
    });
}

void FrameLayer::updatePolish() {
    if (const QImage picture = std::exchange(frame_, {}).toImage(); !picture.isNull()) {
        setImage(picture);
    }
}

}  // namespace vorna::ui
