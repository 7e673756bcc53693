// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A key that is held down long enough to repeat.

#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>

namespace vorna::support {

/// Sends what a key held down causes on X11 after the first press: each repeat is a release and a press.
inline void repeatKey(QQuickWindow& window, Qt::Key key, int times) {
    const QString text = key == Qt::Key_Space ? QStringLiteral(" ") : QStringLiteral("\r");
    for (int time = 0; time < times; ++time) {
        QTest::simulateEvent(&window, false, key, Qt::NoModifier, text, true);
        QTest::simulateEvent(&window, true, key, Qt::NoModifier, text, true);
    }
}

inline void holdKey(QQuickWindow& window, Qt::Key key) {
    QTest::keyPress(&window, key);
    repeatKey(window, key, 20);
    QTest::keyRelease(&window, key);
}

}  // namespace vorna::support
