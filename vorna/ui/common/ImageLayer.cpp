// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/ImageLayer.h>

#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGImageNode>

#include <memory>

namespace vorna::ui {

ImageLayer::ImageLayer(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void ImageLayer::setImage(const QImage& image) {
    image_ = image;
    isNew_ = true;
    update();
    Q_EMIT imageChanged();
}

QSGNode* ImageLayer::updatePaintNode(QSGNode* node, UpdatePaintNodeData* /*data*/) {
    std::unique_ptr<QSGImageNode> drawn(static_cast<QSGImageNode*>(node));
    if (image_.isNull() || width() <= 0 || height() <= 0) {
        // The next node will need its texture again.
        isNew_ = true;
        return nullptr;
    }
    if (!drawn) {
        drawn.reset(window()->createImageNode());
        drawn->setOwnsTexture(true);
        drawn->setFiltering(QSGTexture::Linear);
        isNew_ = true;
    }
    if (isNew_) {
        drawn->setTexture(window()->createTextureFromImage(image_));
        isNew_ = false;
    }
    const QSizeF size = QSizeF(image_.size()).scaled(this->size(), Qt::KeepAspectRatio);
    drawn->setRect(QRectF(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size));
    return drawn.release();
}

void ImageLayer::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) {
        update();
    }
}

}  // namespace vorna::ui
