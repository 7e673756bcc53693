// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Objects and items that belong to a parent in Qt's trees.

#include <QtCore/QObject>
#include <QtQuick/QQuickItem>

#include <memory>
#include <utility>

namespace vorna::ui {

/// Creates an object that lives as long as its parent, unless it is deleted earlier.
template <class T, class... Arguments>
T& makeChild(QObject& parent, Arguments&&... arguments) {
    auto object = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    object->setParent(&parent);
    return *object.release();
}

/// Keeps the item as large as its parent, for as long as both exist.
inline void fillParent(QQuickItem& item, QQuickItem& parent) {
    const auto resize = [&item, &parent] { item.setSize(parent.size()); };
    QObject::connect(&parent, &QQuickItem::widthChanged, &item, resize);
    QObject::connect(&parent, &QQuickItem::heightChanged, &item, resize);
    resize();
}

}  // namespace vorna::ui
