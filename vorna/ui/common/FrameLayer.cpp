#include <vorna/ui/common/FrameLayer.h>

#include <QtMultimedia/QVideoFrame>
#include <QtQml/QQmlEngine>

namespace vorna::ui {

FrameLayer::FrameLayer(QQuickItem* parent) : ImageLayer(parent) {
    QQmlEngine::setObjectOwnership(&sink_, QQmlEngine::CppOwnership);
    connect(&sink_, &QVideoSink::videoFrameChanged, this, [this](const QVideoFrame& frame) {
        if (const QImage picture = frame.toImage(); !picture.isNull()) {
            setImage(picture);
        }
    });
}

}  // namespace vorna::ui
