// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/HostLayer.h>

#include <vorna/ui/common/ObjectTree.h>

#include <QtQuick/QQuickWindow>

namespace vorna::ui {

namespace {

/// Above any z value that a host is likely to use, below the popups of Qt Quick Controls at 1'000'001.
constexpr qreal stageZ = 1'000'000;

QQuickItem& makeLayer(QQuickItem& parent) {
    auto& layer = makeChild<QQuickItem>(parent);
    layer.setParentItem(&parent);
    fillParent(layer, parent);
    return layer;
}

void adopt(const QQuickWindow& window, QQuickItem* hostItem, const QQuickItem* stage) {
    // While a window is being destroyed, its items are removed one by one, and it has no content item.
    if (window.contentItem() == nullptr || hostItem == nullptr || stage == nullptr) {
        return;
    }
    for (QQuickItem* const item : window.contentItem()->childItems()) {
        // Popups of Qt Quick Controls are in an overlay that must stay where it is.
        if (item != hostItem && item != stage && !item->inherits("QQuickOverlay")) {
            item->setParentItem(hostItem);
        }
    }
}

}  // namespace

HostLayer::HostLayer(QQuickWindow& window)
    : item_(&makeLayer(*window.contentItem())),
      stage_(&makeLayer(*window.contentItem())) {
    item_->setObjectName(QStringLiteral("vornaHost"));
    stage_->setObjectName(QStringLiteral("vornaStage"));
    stage_->setZ(stageZ);
    adopt(window, item_, stage_);
    QObject::connect(window.contentItem(), &QQuickItem::childrenChanged, item_,
                     [&window, item = item_, stage = stage_] { adopt(window, item, stage); });
}

QQuickItem* HostLayer::addScreenLayer() {
    return stage_ ? &makeLayer(*stage_) : nullptr;
}

}  // namespace vorna::ui
