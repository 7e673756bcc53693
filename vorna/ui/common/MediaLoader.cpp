// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/MediaLoader.h>

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/URL.h>
#include <vorna/ui/common/Conversions.h>
#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/Services.h>
#include <vorna/ui/common/WorkQueue.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QThreadPool>
#include <QtGui/QImageReader>

#include <algorithm>
#include <utility>

namespace vorna::ui {

namespace {

constexpr std::size_t largestDownload = std::size_t{64} * 1024 * 1024;

struct Picture {
    QImage image;
    QSizeF size;
};

/// What the threads of the pool have to decode.
WorkQueue& decodings() {
    static NeverDestroyed<WorkQueue> value;
    return *value;
}

/// On a thread of the pool. The image is null when the bytes are none.
Picture decoded(const std::string& bytes, int pixelWidth) {
    QByteArray array = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&array);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize stored = reader.size();
    const bool isTurned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    const int storedWidth = isTurned ? stored.height() : stored.width();
    if (stored.isValid() && pixelWidth > 0 && storedWidth > pixelWidth) {
        const double scale = static_cast<double>(pixelWidth) / storedWidth;
        reader.setScaledSize({std::max(1, static_cast<int>(stored.width() * scale)),
                              std::max(1, static_cast<int>(stored.height() * scale))});
    }
    Picture picture;
    picture.image = reader.read();
    const QSize upright = isTurned ? stored.transposed() : stored;
    picture.size = stored.isValid() ? QSizeF(upright) : QSizeF(picture.image.size());
    return picture;
}

}  // namespace

bool MediaLoader::isVideo(const std::optional<HttpResponse>& response) {
    if (!response) {
        return false;
    }
    const auto isContentType = [](const HttpHeader& header) {
        return toQString(header.name).compare(QLatin1String("content-type"), Qt::CaseInsensitive) == 0;
    };
    const auto& headers = response->headers;
    const auto header = std::find_if(headers.rbegin(), headers.rend(), isContentType);
    if (header == headers.rend()) {
        return false;
    }
    const std::string_view value = header->value;
    return value.substr(0, value.find(';')).find("video") != std::string_view::npos;
}

void MediaLoader::start(std::string_view mediaURL, int pixelWidth) {
    mediaURL_ = mediaURL;
    pixelWidth_ = pixelWidth;
    const std::optional<URL> url = URL::parse(mediaURL_);
    const std::shared_ptr<HttpClient> http = services::get().httpClient;
    if (!url || !http) {
        return;
    }
    HttpRequest request{*url, HttpMethod::head, {}, {}};
    request.stop = stop_.get_token();
    http->start(std::move(request), [this, life = std::weak_ptr(life_)](auto, auto response, auto) {
        mainQueue::async([this, life, isVideo = MediaLoader::isVideo(response)] {
            if (life.expired()) {
                return;
            }
            if (isVideo) {
                fetchVideo();
            } else {
                fetchImage();
            }
        });
    });
}

MediaLoader::~MediaLoader() {
    stop_.request_stop();
}

void MediaLoader::stop() {
    stop_.request_stop();
    life_.reset();
    if (!video_.isEmpty()) {
        // The player lets go of the file before it is removed.
        video_.clear();
        Q_EMIT videoChanged();
        videoFile_.reset();
    }
}

void MediaLoader::reportSilence() const {
    log::debug({"Failed to set up AVAudioSession: there is no audio output"});
}

void MediaLoader::fetch(std::function<void(std::string)> use) {
    const std::optional<URL> url = URL::parse(mediaURL_);
    const std::shared_ptr<HttpClient> http = services::get().httpClient;
    if (!url || !http) {
        return;
    }
    HttpRequest request{*url, HttpMethod::get, {}, {}};
    request.responseLimit = largestDownload;
    request.stop = stop_.get_token();
    http->start(std::move(request), [life = std::weak_ptr(life_), use = std::move(use)](
                                        auto body, const auto& /*response*/, const auto& error) {
        if (!body || error) {
            return;
        }
        mainQueue::async([life, use, bytes = std::make_shared<std::string>(std::move(*body))] {
            if (!life.expired()) {
                use(std::move(*bytes));
            }
        });
    });
}

void MediaLoader::fetchImage() {
    fetch([this](std::string bytes) { decode(std::move(bytes)); });
}

void MediaLoader::decode(std::string bytes) {
    decodings().add([this, life = std::weak_ptr(life_), bytes = std::move(bytes), pixelWidth = pixelWidth_] {
        if (life.expired()) {
            return;
        }
        Picture picture = decoded(bytes, pixelWidth);
        if (picture.image.isNull()) {
            return;
        }
        mainQueue::async([this, life, picture = std::move(picture)] {
            if (!life.expired()) {
                image_ = picture.image;
                imageSize_ = picture.size;
                Q_EMIT imageChanged();
            }
        });
    });
    QThreadPool::globalInstance()->start([] { decodings().runFirst(); });
}

void MediaLoader::fetchVideo() {
    fetch([this](const std::string& bytes) {
        // Players read files best: they seek back to the start of each round.
        videoFile_ =
            std::make_unique<QTemporaryFile>(QDir::temp().filePath(QStringLiteral("vorna-media-XXXXXX")));
        const auto size = static_cast<qint64>(bytes.size());
        if (!videoFile_->open() || videoFile_->write(bytes.data(), size) != size || !videoFile_->flush()) {
            videoFile_.reset();
            return;
        }
        video_ = QUrl::fromLocalFile(videoFile_->fileName());
        Q_EMIT videoChanged();
    });
}

}  // namespace vorna::ui
