// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>
#include <QtGui/QImage>

#include <span>

namespace vorna::preview {

struct LabelledPicture {
    QString label;
    QImage image;
};

/// All pictures in one row, equally high, each under its label.
[[nodiscard]] QImage contactSheet(std::span<const LabelledPicture> pictures);

}  // namespace vorna::preview
