// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Objects that Qt's object tree owns.

#include <QtCore/QObject>

#include <memory>
#include <utility>

namespace vorna::ui {

/// Makes an object that lives as long as its parent, unless it is deleted before.
template <class T, class... Arguments>
T& makeChild(QObject& parent, Arguments&&... arguments) {
    auto object = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    object->setParent(&parent);
    return *object.release();
}

}  // namespace vorna::ui
