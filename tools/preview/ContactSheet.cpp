// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/ContactSheet.h>

#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QPainter>

#include <vector>

namespace vorna::preview {

namespace {

constexpr int pictureHeight = 720;
constexpr int labelHeight = 44;
constexpr int gap = 24;

}  // namespace

QImage contactSheet(std::span<const LabelledPicture> pictures) {
    std::vector<QImage> scaled;
    int width = gap;
    for (const LabelledPicture& picture : pictures) {
        QImage image = picture.image.scaledToHeight(pictureHeight, Qt::SmoothTransformation);
        image.setDevicePixelRatio(1);
        width += image.width() + gap;
        scaled.push_back(std::move(image));
    }
    QImage sheet(width, labelHeight + pictureHeight + gap, QImage::Format_RGB32);
    sheet.fill(QColor(0xE9, 0xEA, 0xEE));
    QPainter painter(&sheet);
    QFont font;
    font.setPixelSize(16);
    painter.setFont(font);
    painter.setPen(QColor(0x20, 0x22, 0x28));
    int x = gap;
    for (std::size_t i = 0; i < scaled.size(); ++i) {
        painter.drawText(QRect(x, 0, scaled[i].width() + gap, labelHeight), Qt::AlignLeft | Qt::AlignVCenter,
                         pictures[i].label);
        painter.drawImage(x, labelHeight, scaled[i]);
        x += scaled[i].width() + gap;
    }
    return sheet;
}

}  // namespace vorna::preview
