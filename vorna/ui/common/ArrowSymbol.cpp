// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/ArrowSymbol.h>

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace vorna::ui {

ArrowSymbol::ArrowSymbol(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setImplicitSize(20, 17);
    connect(this, &ArrowSymbol::colorChanged, this, [this] { update(); });
}

void ArrowSymbol::paint(QPainter* painter) {
    constexpr double line = 2;
    const double middle = height() / 2;
    const double tip = width() - line;
    const double head = middle - line;
    QPainterPath path;
    path.moveTo(line, middle);
    path.lineTo(tip, middle);
    path.moveTo(tip - head, middle - head);
    path.lineTo(tip, middle);
    path.lineTo(tip - head, middle + head);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(color_, line, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPath(path);
}

}  // namespace vorna::ui
