// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Three quarters of a circle, clockwise from twelve o'clock to nine, with rounded ends.

#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickPaintedItem>

namespace vorna::ui {

class SpinningArc : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
    Q_PROPERTY(double lineWidth MEMBER lineWidth_ NOTIFY changed)
    /// Radius of the line's centre, chosen so that the line fits into the item.
    Q_PROPERTY(double radius READ radius NOTIFY radiusChanged)
    QML_ELEMENT

  public:
    explicit SpinningArc(QQuickItem* parent = nullptr);

    double radius() const;

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void changed();
    void radiusChanged();

  private:
    QColor color_ = Qt::white;
    double lineWidth_ = 5;
};

}  // namespace vorna::ui
