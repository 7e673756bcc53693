// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Draws a video frame by frame as pictures, for renderers that cannot draw video themselves: Qt's software
/// renderer.

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

    /// Asked by players, which look for it by its name.
    Q_INVOKABLE QVideoSink* videoSink() { return &sink_; }

  protected:
    void updatePolish() override;

  private:
    /// The last one, until it is drawn. A player gives up for good when it is kept waiting while it hands
    /// over a frame, and the first picture of a frame can take long: Qt loads a graphics driver for it.
    QVideoFrame frame_;
    QVideoSink sink_;
};

}  // namespace vorna::ui
