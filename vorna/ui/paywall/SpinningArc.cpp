// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/SpinningArc.h>

#include <QtGui/QPainter>

#include <algorithm>

namespace vorna::ui {

SpinningArc::SpinningArc(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &SpinningArc::changed, this, [this] {
        update();
        Q_EMIT radiusChanged();
    });
    connect(this, &QQuickItem::widthChanged, this, &SpinningArc::radiusChanged);
    connect(this, &QQuickItem::heightChanged, this, &SpinningArc::radiusChanged);
}

double SpinningArc::radius() const {
    return std::max(0.0, (std::min(width(), height()) - lineWidth_) * 0.5);
}

void SpinningArc::paint(QPainter* painter) {
    const QPointF middle = boundingRect().center();
    const QRectF circle(middle.x() - radius(), middle.y() - radius(), 2 * radius(), 2 * radius());
    // Qt counts sixteenths of a degree, counter-clockwise from three o'clock.
    constexpr int degree = 16;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(color_, lineWidth_, Qt::SolidLine, Qt::RoundCap));
    painter->drawArc(circle, 90 * degree, -270 * degree);
}

}  // namespace vorna::ui
