// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/CardShadow.h>

#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace vorna::ui {

namespace {

/// Blurs one row or column of an 8-bit image. Three passes of a moving average approximate a Gaussian.
void blurLine(std::uint8_t* first, std::ptrdiff_t step, int count, int radius,
              std::vector<std::uint8_t>& line) {
    const auto length = static_cast<std::size_t>(count);
    line.resize(length);
    for (int pass = 0; pass < 3; ++pass) {
        const int window = 2 * radius + 1;
        int sum = 0;
        for (int index = -radius; index <= radius; ++index) {
            sum += index >= 0 && index < count ? first[index * step] : 0;
        }
        for (int index = 0; index < count; ++index) {
            line[static_cast<std::size_t>(index)] = static_cast<std::uint8_t>(sum / window);
            const int entering = index + radius + 1;
            const int leaving = index - radius;
            sum += entering < count ? first[entering * step] : 0;
            sum -= leaving >= 0 ? first[leaving * step] : 0;
        }
        for (int index = 0; index < count; ++index) {
            first[index * step] = line[static_cast<std::size_t>(index)];
        }
    }
}

/// Returns the blurred alpha mask of the card.
QImage blurredCard(QSize size, const QRectF& card, double corner, double deviation) {
    QImage mask(size, QImage::Format_Alpha8);
    mask.fill(0);
    {
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(card, corner, corner);
    }
    // The variance of three averages over 2r + 1 pixels is r(r + 1).
    const int radius = static_cast<int>(std::lround((std::sqrt(1 + 4 * deviation * deviation) - 1) / 2));
    if (radius > 0) {
        std::vector<std::uint8_t> line;
        const auto stride = static_cast<std::ptrdiff_t>(mask.bytesPerLine());
        for (int row = 0; row < mask.height(); ++row) {
            blurLine(mask.bits() + row * stride, 1, mask.width(), radius, line);
        }
        for (int column = 0; column < mask.width(); ++column) {
            blurLine(mask.bits() + column, stride, mask.height(), radius, line);
        }
    }
    return mask;
}

}  // namespace

CardShadow::CardShadow(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &CardShadow::changed, this, [this] { update(); });
}

void CardShadow::paint(QPainter* painter) {
    const QSize size(static_cast<int>(std::ceil(width())), static_cast<int>(std::ceil(height())));
    const QRectF card = QRectF(0, 0, width(), height()).adjusted(margin_, margin_, -margin_, -margin_);
    if (size.isEmpty() || card.isEmpty() || strength_ <= 0) {
        return;
    }
    const QImage mask = blurredCard(size, card, cornerRadius_, blurRadius_);
    QImage shadow(size, QImage::Format_ARGB32_Premultiplied);
    shadow.fill(color_);
    QPainter cut(&shadow);
    cut.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    cut.drawImage(0, 0, mask);
    cut.end();
    painter->setOpacity(std::clamp(strength_, 0.0, 1.0));
    painter->drawImage(0, 0, shadow);
}

}  // namespace vorna::ui
