// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Creates pictures and videos for tests.

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include <QtCore/QBuffer>
#include <QtCore/QByteArray>
#include <QtGui/QImage>

#include <filesystem>
#include <stdexcept>

namespace vorna::support {

/// An encoded picture with a left and a right half of different colours.
inline std::string encodedPicture(QSize size, const char* format, QColor left = Qt::red,
                                  QColor right = Qt::blue) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(right);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width() / 2; ++x) {
            image.setPixelColor(x, y, left);
        }
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format, 100)) {
        throw std::runtime_error("no picture");
    }
    return bytes.toStdString();
}

/// A JPEG with an EXIF orientation: 6 means to be rotated clockwise by 90 degrees.
inline std::string turnedJpeg(QSize size, char orientation) {
    const std::string jpeg = encodedPicture(size, "jpeg");
    using namespace std::string_literals;
    const std::string exif =
        "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0"s + orientation + "\0\0\0\0\0\0"s;
    const auto length = static_cast<char>(exif.size() + 2);
    return jpeg.substr(0, 2) + "\xff\xe1\0"s + length + exif + jpeg.substr(2);
}

/// One second of video with a tone; the file name's extension determines the container.
inline void makeVideo(const std::filesystem::path& file, const std::string& videoCodec,
                      const std::string& audioCodec) {
    std::vector<std::string> words{
        "ffmpeg",   "-v",       "error",      "-y",
        "-f",       "lavfi",    "-i",         "testsrc2=size=160x90:rate=25:duration=1",
        "-f",       "lavfi",    "-i",         "sine=frequency=440:duration=1",
        "-pix_fmt", "yuv420p",  "-c:v",       videoCodec,
        "-c:a",     audioCodec, file.string()};
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    // The thread sanitizer does not support the way QProcess forks.
    pid_t process = 0;
    int status = -1;
    if (::posix_spawnp(&process, "ffmpeg", nullptr, nullptr, arguments.data(), ::environ) != 0 ||
        ::waitpid(process, &status, 0) != process || status != 0) {
        throw std::runtime_error("ffmpeg failed");
    }
}

}  // namespace vorna::support
