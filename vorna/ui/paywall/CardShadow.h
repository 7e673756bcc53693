// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The soft shadow of a card with rounded corners, drawn as if the card were opaque. The item is placed below
/// the card and extends beyond it by a margin on each side.

#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickPaintedItem>

namespace vorna::ui {

class CardShadow : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
    /// Opacity from 0 to 1, multiplied by the colour's own.
    Q_PROPERTY(double strength MEMBER strength_ NOTIFY changed)
    /// Standard deviation of the blur, in logical pixels.
    Q_PROPERTY(double blurRadius MEMBER blurRadius_ NOTIFY changed)
    Q_PROPERTY(double cornerRadius MEMBER cornerRadius_ NOTIFY changed)
    /// How far the item extends beyond the card on each side.
    Q_PROPERTY(double margin MEMBER margin_ NOTIFY changed)
    QML_ELEMENT

  public:
    explicit CardShadow(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void changed();

  private:
    QColor color_ = Qt::black;
    double strength_ = 0;
    double blurRadius_ = 4;
    double cornerRadius_ = 18;
    double margin_ = 0;
};

}  // namespace vorna::ui
