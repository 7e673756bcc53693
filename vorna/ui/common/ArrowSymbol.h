// SPDX-License-Identifier: Apache-2.0
#pragma once

/// An arrow pointing right, in one colour: a line with round ends and a head of two strokes.

#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickPaintedItem>

namespace vorna::ui {

class ArrowSymbol : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY colorChanged)
    QML_ELEMENT

  public:
    /// 20 by 17 logical pixels by default, to go with text of size 18.
    explicit ArrowSymbol(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void colorChanged();

  private:
    QColor color_ = Qt::white;
};

}  // namespace vorna::ui
