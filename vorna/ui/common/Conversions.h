// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Converts the library's values to Qt's: UTF-8 text and colours.

#include <vorna/documents/UIColor.h>

#include <QtCore/QString>
#include <QtGui/QColor>

#include <string_view>

namespace vorna::ui {

inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QColor toQColor(const UIColor& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

/// The colour of a colour string; black if it is not valid.
inline QColor colorOf(std::string_view hex) {
    return toQColor(UIColor(hex));
}

}  // namespace vorna::ui
