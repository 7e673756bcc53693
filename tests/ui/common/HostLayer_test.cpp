// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/HostLayer.h>

#include <vorna/ui/common/ObjectTree.h>

#include <QtQuick/QQuickWindow>

#include <gtest/gtest.h>

#include <memory>

namespace vorna::ui {
namespace {

class Layers : public testing::Test {
  protected:
    Layers() { window->resize(400, 600); }

    QQuickItem& addItem() {
        auto& item = makeChild<QQuickItem>(*window->contentItem());
        item.setParentItem(window->contentItem());
        return item;
    }

    std::unique_ptr<QQuickWindow> window = std::make_unique<QQuickWindow>();
};

TEST_F(Layers, HoldTheItemsOfTheHost) {
    const QQuickItem& early = addItem();
    const HostLayer host(*window);
    const QQuickItem& late = addItem();
    EXPECT_EQ(early.parentItem(), host.item());
    EXPECT_EQ(late.parentItem(), host.item());
    EXPECT_EQ(host.item()->parentItem(), window->contentItem());
}

TEST_F(Layers, AreAsLargeAsTheWindow) {
    HostLayer host(*window);
    const QQuickItem* const layer = host.addScreenLayer();
    window->contentItem()->setSize({300, 500});
    EXPECT_EQ(host.item()->size(), QSizeF(300, 500));
    EXPECT_EQ(layer->size(), QSizeF(300, 500));
}

TEST_F(Layers, OfScreensAreAboveAnythingOfTheHost) {
    HostLayer host(*window);
    addItem().setZ(5'000'000);
    const QQuickItem* const first = host.addScreenLayer();
    const QQuickItem* const second = host.addScreenLayer();
    const QQuickItem* const stage = first->parentItem();
    EXPECT_GT(stage->z(), host.item()->z());
    EXPECT_EQ(stage->parentItem(), window->contentItem());
    EXPECT_EQ(stage->childItems().indexOf(second), 1) << "later ones are above";
}

TEST_F(Layers, AreDestroyedWithTheWindow) {
    HostLayer host(*window);
    window.reset();
    EXPECT_TRUE(host.item().isNull());
    EXPECT_EQ(host.addScreenLayer(), nullptr);
}

}  // namespace
}  // namespace vorna::ui
