// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Creates views from the QML files of the library.

#include <QtCore/QUrl>
#include <QtQuick/QQuickItem>

#include <memory>

class QQmlEngine;

namespace vorna::ui {

/// The engine of all our views, which exists for as long as it is held. It is separate from the host's
/// engines. Main thread.
std::shared_ptr<QQmlEngine> sharedEngine();

/// The URL of one of our QML files, given its path below `vorna/ui`.
QUrl viewFile(const char* path);

/// Creates the view in that file, with the controller as its property `controller`, as a child of the parent
/// and always of the parent's size. Null, with a log line, on failure: a QML module may be missing.
QQuickItem* loadViewFrom(const QUrl& file, QObject& controller, QQuickItem& parent);

}  // namespace vorna::ui
