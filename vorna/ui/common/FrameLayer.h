// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Draws a video as a sequence of pictures, for Qt's software renderer, which cannot draw video itself.

#include <vorna/ui/common/ImageLayer.h>

#include <QtMultimedia/QVideoFrame>
#include <QtMultimedia/QVideoSink>
#include <QtQmlIntegration/qqmlintegration.h>

namespace vorna::ui {

/// Serves as a media player's `videoOutput`.
class FrameLayer : public vorna::ui::ImageLayer {
    Q_OBJECT
    QML_ELEMENT

  public:
    explicit FrameLayer(QQuickItem* parent = nullptr);

    /// Players look it up by name.
    Q_INVOKABLE QVideoSink* videoSink() { return &sink_; }

  protected:
    void updatePolish() override;

  private:
    /// The latest one, until it is drawn. Converting a frame on delivery would be too slow: players give up
    /// permanently if a delivery blocks, and the first conversion loads a graphics driver.
    QVideoFrame frame_;
    QVideoSink sink_;
};

}  // namespace vorna::ui
