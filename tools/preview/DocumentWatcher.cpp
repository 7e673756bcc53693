// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/DocumentWatcher.h>

#include <QtCore/QFileInfo>

#include <chrono>

namespace vorna::preview {

namespace {

constexpr std::chrono::milliseconds quietTime{120};

}  // namespace

DocumentWatcher::DocumentWatcher(const QString& file) : file_(QFileInfo(file).absoluteFilePath()) {
    quiet_.setSingleShot(true);
    quiet_.setInterval(quietTime);
    connect(&quiet_, &QTimer::timeout, this, [this] {
        watchFile();
        Q_EMIT mayHaveChanged();
    });
    const auto stir = [this] { quiet_.start(); };
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, stir);
    // A file that takes the place of another shows in its folder alone.
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, stir);
    watcher_.addPath(QFileInfo(file_).absolutePath());
    watchFile();
}

void DocumentWatcher::watchFile() {
    // A watch follows the file that had the name, not the name.
    if (watcher_.files().contains(file_)) {
        watcher_.removePath(file_);
    }
    if (QFileInfo::exists(file_)) {
        watcher_.addPath(file_);
    }
}

}  // namespace vorna::preview
