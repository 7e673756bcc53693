// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Fetches the picture or video at the top of a screen: determines its kind, downloads it, and decodes
/// pictures off the main thread at the size they are shown in. Failures are silent and change nothing.
///
/// Requests go through the library's HTTP client and end with this object. Main thread.

#include <QtCore/QObject>
#include <QtCore/QSize>
#include <QtCore/QTemporaryFile>
#include <QtCore/QUrl>
#include <QtGui/QImage>
#include <QtQmlIntegration/qqmlintegration.h>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace vorna {
struct HttpResponse;
}

namespace vorna::ui {

class MediaLoader : public QObject {
    Q_OBJECT
    Q_PROPERTY(QImage image READ image NOTIFY imageChanged)
    Q_PROPERTY(QSizeF imageSize READ imageSize NOTIFY imageChanged)
    Q_PROPERTY(QUrl video READ video NOTIFY videoChanged)
    QML_ELEMENT
    QML_UNCREATABLE("created by the screens")

  public:
    MediaLoader() = default;
    MediaLoader(const MediaLoader&) = delete;
    MediaLoader& operator=(const MediaLoader&) = delete;
    MediaLoader(MediaLoader&&) = delete;
    MediaLoader& operator=(MediaLoader&&) = delete;
    ~MediaLoader() override;

    /// Call once. The width is that of the picture on screen, in device pixels.
    void start(std::string_view mediaURL, int pixelWidth);

    /// Ends requests in progress and removes the video. A decoded picture stays.
    void stop();

    /// Null until it has been decoded.
    QImage image() const { return image_; }

    /// The size of the picture as received, upright.
    QSizeF imageSize() const { return imageSize_; }

    /// A temporary file that only this process can open; empty until the video has been downloaded.
    QUrl video() const { return video_; }

    /// Whether the response's content type is that of a video. Without a response or a content type, the
    /// media is treated as a picture.
    static bool isVideo(const std::optional<HttpResponse>& response);

    /// Logs that there is no audio output; the video plays without sound.
    Q_INVOKABLE void reportSilence() const;

  Q_SIGNALS:
    void imageChanged();
    void videoChanged();

  private:
    void fetchImage();
    void fetchVideo();
    void fetch(std::function<void(std::string)> use);
    void decode(std::string bytes);

    std::string mediaURL_;
    int pixelWidth_ = 0;
    std::stop_source stop_;
    /// Reset at the end: callbacks that arrive later find it expired.
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
    QImage image_;
    QSizeF imageSize_;
    QUrl video_;
    std::unique_ptr<QTemporaryFile> videoFile_;
};

}  // namespace vorna::ui
