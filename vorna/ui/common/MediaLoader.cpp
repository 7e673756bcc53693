// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/MediaLoader.h>

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/URL.h>
#include <vorna/ui/common/Conversions.h>
#include <vorna/ui/common/MainQueue.h>
#include <vorna/ui/common/ScreensRuntime.h>
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

/// Pictures for the threads of Qt's pool to decode.
struct Decodings {
    WorkQueue queue;
};

WorkQueue& decodings() {
    return ScreensRuntime::part<Decodings>().queue;
}

/// Does nothing if the text is not a URL or the library has no instance yet.
void send(const std::string& mediaURL, HttpMethod method, std::stop_token stop,
          HttpClient::Completion completion) {
    const std::optional<URL> url = URL::parse(mediaURL);
    const std::shared_ptr<HttpClient> http = services::get().httpClient;
    if (!url || !http) {
        return;
    }
    HttpRequest request{*url, method, {}, {}};
    if (method == HttpMethod::get) {
        request.responseLimit = largestDownload;
    }
    request.stop = std::move(stop);
    http->start(std::move(request), std::move(completion));
}

/// std::nullopt if the bytes are not a picture. Any thread.
std::optional<Picture> decoded(const std::string& bytes, int pixelWidth) {
    QByteArray array = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer(&array);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize stored = reader.size();
    const bool isRotated = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    const int storedWidth = isRotated ? stored.height() : stored.width();
    if (stored.isValid() && pixelWidth > 0 && storedWidth > pixelWidth) {
        const double scale = static_cast<double>(pixelWidth) / storedWidth;
        reader.setScaledSize({std::max(1, static_cast<int>(stored.width() * scale)),
                              std::max(1, static_cast<int>(stored.height() * scale))});
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return std::nullopt;
    }
    const QSize upright = isRotated ? stored.transposed() : stored;
    const QSizeF size = stored.isValid() ? upright : image.size();
    return Picture{std::move(image), size};
}

/// Null if the file cannot be written. Players work best with files: each loop begins with a seek to the
/// start.
std::unique_ptr<QTemporaryFile> storedVideo(const std::string& bytes) {
    auto file = std::make_unique<QTemporaryFile>(QDir::temp().filePath(QStringLiteral("vorna-media-XXXXXX")));
    const auto size = static_cast<qint64>(bytes.size());
    const bool isStored = file->open() && file->write(bytes.data(), size) == size && file->flush();
    return isStored ? std::move(file) : nullptr;
}

/// Removes the file's name, so that nothing is left behind however the process ends, and returns the path by
/// which this process can still open it. Without /proc the file keeps its name.
QString unnamed(QTemporaryFile& file) {
    QString path = QStringLiteral("/proc/self/fd/%1").arg(file.handle());
    if (!QFile::exists(path) || !QFile::remove(file.fileName())) {
        return file.fileName();
    }
    file.setAutoRemove(false);
    return path;
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
    const auto decide = [this, life = std::weak_ptr(life_)](const auto&, const auto& response, const auto&) {
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
    };
    send(mediaURL_, HttpMethod::head, stop_.get_token(), decide);
}

MediaLoader::~MediaLoader() {
    stop_.request_stop();
}

void MediaLoader::stop() {
    stop_.request_stop();
    life_.reset();
    if (!video_.isEmpty()) {
        // The player releases the file before it is removed.
        video_.clear();
        Q_EMIT videoChanged();
        videoFile_.reset();
    }
}

void MediaLoader::reportSilence() const {
    log::debug({"Failed to set up AVAudioSession: there is no audio output"});
}

void MediaLoader::fetch(std::function<void(std::string)> use) {
    const auto deliver = [life = std::weak_ptr(life_),
                          use = std::move(use)](auto body, const auto& /*response*/, const auto& error) {
        if (!body || error) {
            return;
        }
        mainQueue::async([life, use, bytes = std::make_shared<std::string>(std::move(*body))] {
            if (!life.expired()) {
                use(std::move(*bytes));
            }
        });
    };
    send(mediaURL_, HttpMethod::get, stop_.get_token(), deliver);
}

void MediaLoader::fetchImage() {
    fetch([this](std::string bytes) { decode(std::move(bytes)); });
}

void MediaLoader::decode(std::string bytes) {
    decodings().add([this, life = std::weak_ptr(life_), bytes = std::move(bytes), pixelWidth = pixelWidth_] {
        if (life.expired()) {
            return;
        }
        const std::optional<Picture> picture = decoded(bytes, pixelWidth);
        if (!picture) {
            return;
        }
        mainQueue::async([this, life, picture] {
            if (!life.expired()) {
                image_ = picture->image;
                imageSize_ = picture->size;
                Q_EMIT imageChanged();
            }
        });
    });
    QThreadPool::globalInstance()->start([] { decodings().runFirst(); });
}

void MediaLoader::fetchVideo() {
    fetch([this](const std::string& bytes) {
        videoFile_ = storedVideo(bytes);
        if (videoFile_) {
            video_ = QUrl::fromLocalFile(unnamed(*videoFile_));
            Q_EMIT videoChanged();
        }
    });
}

}  // namespace vorna::ui
