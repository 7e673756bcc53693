// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/FrameLayer.h>

#include <tests/support/ui/ScreenHost.h>

#include <vorna/ui/common/ObjectTree.h>

#include <QtMultimedia/QVideoFrame>
#include <QtMultimedia/QVideoFrameFormat>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace vorna::ui {
namespace {

using support::eventually;
using support::ScreenHost;

QVideoFrame frameOf(QColor colour) {
    QVideoFrame frame(QVideoFrameFormat({16, 8}, QVideoFrameFormat::Format_BGRA8888));
    EXPECT_TRUE(frame.map(QVideoFrame::WriteOnly));
    const std::uint32_t pixel = colour.rgba();
    for (int at = 0; at + 4 <= frame.mappedBytes(0); at += 4) {
        std::memcpy(frame.bits(0) + at, &pixel, sizeof pixel);
    }
    frame.unmap();
    return frame;
}

class Frames : public testing::Test {
  protected:
    Frames() : layer(makeChild<FrameLayer>(*host.content())) {
        layer.setParentItem(host.content());
        layer.setSize(host.content()->size());
    }

    QColor colourInTheMiddle() {
        const QImage picture = host.picture();
        return picture.pixelColor(picture.width() / 2, picture.height() / 2);
    }

    ScreenHost host;
    FrameLayer& layer;
};

// Frames are delivered by a player, which gives up if a delivery takes long.
TEST_F(Frames, AreConvertedWhenDrawnNotWhenDelivered) {
    layer.videoSink()->setVideoFrame(frameOf(Qt::red));
    EXPECT_TRUE(layer.image().isNull());
    EXPECT_TRUE(eventually([&] { return !layer.image().isNull(); }));
    EXPECT_EQ(colourInTheMiddle(), QColor(Qt::red));
}

TEST_F(Frames, DeliveredFasterThanDrawnAreSkipped) {
    int pictures = 0;
    QObject::connect(&layer, &FrameLayer::imageChanged, &layer, [&pictures] { ++pictures; });
    for (const Qt::GlobalColor colour : {Qt::red, Qt::green, Qt::blue}) {
        layer.videoSink()->setVideoFrame(frameOf(colour));
    }
    EXPECT_TRUE(eventually([&] { return pictures > 0; }));
    EXPECT_EQ(colourInTheMiddle(), QColor(Qt::blue));
    EXPECT_EQ(pictures, 1);
}

TEST_F(Frames, ThatAreEmptyLeaveTheLastPicture) {
    layer.videoSink()->setVideoFrame(frameOf(Qt::red));
    EXPECT_TRUE(eventually([&] { return !layer.image().isNull(); }));
    layer.videoSink()->setVideoFrame({});
    host.settle();
    EXPECT_EQ(colourInTheMiddle(), QColor(Qt::red));
}

}  // namespace
}  // namespace vorna::ui
