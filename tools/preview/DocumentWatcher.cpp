// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/DocumentWatcher.h>

#include <QtCore/QFileInfo>

#include <chrono>

namespace vorna::preview {

namespace {

constexpr std::chrono::milliseconds settleTime{120};

}  // namespace

DocumentWatcher::DocumentWatcher(const QString& file) : file_(QFileInfo(file).absoluteFilePath()) {
    settleTimer_.setSingleShot(true);
    settleTimer_.setInterval(settleTime);
    connect(&settleTimer_, &QTimer::timeout, this, [this] {
        watchFile();
        Q_EMIT mayHaveChanged();
    });
    const auto restart = [this] { settleTimer_.start(); };
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, restart);
    // A replaced file is noticed only in its folder.
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, restart);
    watcher_.addPath(QFileInfo(file_).absolutePath());
    watchFile();
}

void DocumentWatcher::watchFile() {
    // A watch follows the file, not its name.
    if (watcher_.files().contains(file_)) {
        watcher_.removePath(file_);
    }
    if (QFileInfo::exists(file_)) {
        watcher_.addPath(file_);
    }
}

}  // namespace vorna::preview
