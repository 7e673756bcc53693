// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Fetches the picture or video at the top of a screen: asks what it is, downloads it, and decodes a picture
/// off the main thread at the size it is shown. What cannot be had leaves everything as it is.
///
/// All network work goes through the library's HTTP client and ends with this object. Main thread.

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
    QML_UNCREATABLE("made by the screens")

  public:
    MediaLoader() = default;
    MediaLoader(const MediaLoader&) = delete;
    MediaLoader& operator=(const MediaLoader&) = delete;
    MediaLoader(MediaLoader&&) = delete;
    MediaLoader& operator=(MediaLoader&&) = delete;
    ~MediaLoader() override;

    /// Begins, once. The width is how many device pixels the picture will be shown wide.
    void start(std::string_view mediaURL, int pixelWidth);

    /// Ends whatever is under way, and takes the video back. What has been decoded stays.
    void stop();

    /// Null until a picture has been decoded.
    QImage image() const { return image_; }

    /// The size of the picture as it was sent, upright.
    QSizeF imageSize() const { return imageSize_; }

    /// A file of ours with the video; empty until it is there.
    QUrl video() const { return video_; }

    /// Whether an answer says that it holds a video. Without an answer, or a type in it, it is taken for a
    /// picture.
    static bool isVideo(const std::optional<HttpResponse>& response);

    /// The system has no way to play sound; the video goes on without.
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
    /// There until the end: what comes back later finds it gone.
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
    QImage image_;
    QSizeF imageSize_;
    QUrl video_;
    std::unique_ptr<QTemporaryFile> videoFile_;
};

}  // namespace vorna::ui
