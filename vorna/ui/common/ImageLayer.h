// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Draws an image as large as possible without distortion.

#include <QtGui/QImage>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickItem>

namespace vorna::ui {

class ImageLayer : public QQuickItem {
    Q_OBJECT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    QML_ELEMENT

  public:
    explicit ImageLayer(QQuickItem* parent = nullptr);

    QImage image() const { return image_; }

    /// A null image draws nothing.
    void setImage(const QImage& image);

  Q_SIGNALS:
    void imageChanged();

  protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

  private:
    QImage image_;
    bool isNew_ = false;
};

}  // namespace vorna::ui
