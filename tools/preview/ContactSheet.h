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

/// Draws all pictures in one row, at the same height, each below its label.
[[nodiscard]] QImage contactSheet(std::span<const LabelledPicture> pictures);

}  // namespace vorna::preview
