// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Makes items from the QML files that are part of the library.

#include <QtCore/QUrl>
#include <QtQuick/QQuickItem>

#include <memory>

class QQmlEngine;

namespace vorna::ui {

class ViewController;

/// The engine that makes all our views; it lives as long as somebody holds it. The host's own engine, if it
/// has one, knows nothing of it. Main thread.
std::shared_ptr<QQmlEngine> sharedEngine();

/// Where a QML file of ours is, given its path below `vorna/ui`.
QUrl viewFile(const char* path);

/// Makes the view in that file, with the controller as its property `controller`, as a child of the parent
/// and always of the parent's size. Null, with a log line, when that fails: for want of a QML module, say.
QQuickItem* loadViewFrom(const QUrl& file, ViewController& controller, QQuickItem& parent);

/// Keeps the item as large as its parent, for as long as both live.
void fillParent(QQuickItem& item, QQuickItem& parent);

}  // namespace vorna::ui
