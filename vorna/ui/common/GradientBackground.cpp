// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/GradientBackground.h>

#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>

namespace vorna::ui {

GradientBackground::GradientBackground(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &GradientBackground::colorsChanged, this, [this] { update(); });
}

void GradientBackground::paint(QPainter* painter) {
    if (width() <= 0 || height() <= 0) {
        return;
    }
    // Qt's gradient runs along the line between its two points. That line has the direction of t's slope and
    // reaches t = 1 at the distance 1 / |slope| from the origin.
    const double slopeX = 1 / (1.25 * width());
    const double slopeY = 1 / (2.5 * height());
    const double square = slopeX * slopeX + slopeY * slopeY;
    QLinearGradient gradient(QPointF(0, 0), QPointF(slopeX / square, slopeY / square));
    gradient.setColorAt(0, firstColor_);
    gradient.setColorAt(1, secondColor_);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(gradient);
    painter->drawRoundedRect(boundingRect(), height() / 2, height() / 2);
}

}  // namespace vorna::ui
