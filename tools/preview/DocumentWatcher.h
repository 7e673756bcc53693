// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

namespace vorna::preview {

/// Signals that a file may have been written, replaced or recreated. Editors write in several operations, so
/// it waits until they are done. The contents may be the same as before.
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
    QTimer settleTimer_;
};

}  // namespace vorna::preview
