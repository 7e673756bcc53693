// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The background of an action button: a capsule with a gradient between two colours.
///
/// The gradient is defined in the unit square, from (0, 0) to (1, 0.5), and stretched with the item: at (x,
/// y) its position between the two colours is t = (x / width + y / (2 · height)) / 1.25.

#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickPaintedItem>

namespace vorna::ui {

class GradientBackground : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QColor firstColor MEMBER firstColor_ NOTIFY colorsChanged)
    Q_PROPERTY(QColor secondColor MEMBER secondColor_ NOTIFY colorsChanged)
    QML_ELEMENT

  public:
    explicit GradientBackground(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void colorsChanged();

  private:
    QColor firstColor_ = Qt::black;
    QColor secondColor_ = Qt::black;
};

}  // namespace vorna::ui
