// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

namespace vorna::preview {

/// Tells when a file may have changed: written to, put in the place of another, or back after it was gone.
/// Editors write in several turns, so it waits until there is quiet. Whoever listens reads the file; what it
/// holds may be the same as before.
class DocumentWatcher : public QObject {
    Q_OBJECT

  public:
    explicit DocumentWatcher(const QString& file);

  Q_SIGNALS:
    void mayHaveChanged();

  private:
    void watchFile();

    const QString file_;
    QFileSystemWatcher watcher_;
    QTimer quiet_;
};

}  // namespace vorna::preview
