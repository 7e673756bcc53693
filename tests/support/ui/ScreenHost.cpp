// SPDX-License-Identifier: Apache-2.0
#include <tests/support/ui/ScreenHost.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/ui/attach.h>
#include <vorna/ui/common/ObjectTree.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QThread>
#include <QtGui/QPointingDevice>
#include <QtQuick/QSGRectangleNode>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <algorithm>

namespace vorna::support {

namespace {

/// A host's plain content.
class ColoredItem : public QQuickItem {
  public:
    ColoredItem() { setFlag(ItemHasContents); }

  protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData*) override {
        std::unique_ptr<QSGRectangleNode> rectangle(static_cast<QSGRectangleNode*>(node));
        if (!rectangle) {
            rectangle.reset(window()->createRectangleNode());
        }
        rectangle->setRect(boundingRect());
        rectangle->setColor(QColor(0x33, 0x66, 0x99));
        return rectangle.release();
    }
};

}  // namespace

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds longest) {
    const QDeadlineTimer deadline(longest);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::usleep(500);
    }
    return true;
}

void letTimePass(std::chrono::milliseconds time) {
    eventually([] { return false; }, time);
}

std::vector<QQuickItem*> findItems(QQuickItem* below, std::string_view name) {
    std::vector<QQuickItem*> found;
    if (below == nullptr) {
        return found;
    }
    if (below->objectName().toStdString() == name) {
        found.push_back(below);
    }
    for (QQuickItem* const child : below->childItems()) {
        const std::vector<QQuickItem*> deeper = findItems(child, name);
        found.insert(found.end(), deeper.begin(), deeper.end());
    }
    return found;
}

QQuickItem* findItem(QQuickItem* below, std::string_view name) {
    const std::vector<QQuickItem*> found = findItems(below, name);
    return found.empty() ? nullptr : found.front();
}

ScreenHost::ScreenHost(QSize size) : quickWindow_(std::make_unique<QQuickWindow>()) {
    for (const std::string_view name :
         {VornaCoreSDK::PaidProductClicked, VornaCoreSDK::OnboardingScreensFinished,
          VornaCoreSDK::PaywallScreenClosed, VornaCoreSDK::OnboardingScreenClosed,
          VornaCoreSDK::PaywallScreenFinished, VornaCoreSDK::RestorePurchaseClicked}) {
        observations_.push_back(NotificationCenter::defaultCenter().addObserver(
            name,
            [seen = notifications_](const Notification& notification) { seen->push_back(notification); }));
    }
    quickWindow_->resize(size);
    content_ = &ui::makeChild<ColoredItem>(*quickWindow_->contentItem());
    content_->setParentItem(quickWindow_->contentItem());
    content_->setObjectName(QStringLiteral("hostContent"));
    content_->setSize(size);
    window_ = &ui::attach(*quickWindow_);
    quickWindow_->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(quickWindow_.get()));
    quickWindow_->requestActivate();
    EXPECT_TRUE(eventually([&] { return quickWindow_->isActive(); }));
}

ScreenHost::~ScreenHost() {
    close();
}

void ScreenHost::close() {
    quickWindow_.reset();
    window_ = nullptr;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QQuickItem* ScreenHost::topView() const {
    const auto shown = screens();
    return shown.empty() ? nullptr : shown.back()->view();
}

void ScreenHost::settle() {
    EXPECT_TRUE(eventually([&] { return !window_->isMoving(); }));
    // Shared: a queued signal may still arrive after this has returned.
    const auto drawn = std::make_shared<bool>(false);
    const auto connection = QObject::connect(
        quickWindow_.get(), &QQuickWindow::afterRendering, quickWindow_.get(), [drawn] { *drawn = true; },
        Qt::QueuedConnection);
    quickWindow_->update();
    EXPECT_TRUE(eventually([&] { return *drawn; }));
    QObject::disconnect(connection);
}

QRectF ScreenHost::geometry(const QQuickItem* item) {
    return item == nullptr ? QRectF() : item->mapRectToScene(item->boundingRect());
}

void ScreenHost::click(QPointF position) {
    QTest::mouseClick(quickWindow_.get(), Qt::LeftButton, {}, position.toPoint());
}

void ScreenHost::click(const QQuickItem* item) {
    ASSERT_NE(item, nullptr);
    click(geometry(item).center());
}

void ScreenHost::touch(const QQuickItem* item) {
    ASSERT_NE(item, nullptr);
    static QPointingDevice* const screen = QTest::createTouchDevice();
    const QPoint position = geometry(item).center().toPoint();
    QTest::touchEvent(quickWindow_.get(), screen).press(0, position, quickWindow_.get());
    QTest::touchEvent(quickWindow_.get(), screen).release(0, position, quickWindow_.get());
}

void ScreenHost::press(Qt::Key key) {
    QTest::keyClick(quickWindow_.get(), key);
}

QImage ScreenHost::picture() {
    return quickWindow_->grabWindow().convertToFormat(QImage::Format_RGB32);
}

std::vector<std::string> ScreenHost::notificationNames() const {
    std::vector<std::string> names;
    std::transform(notifications_->begin(), notifications_->end(), std::back_inserter(names),
                   [](const Notification& notification) { return notification.name; });
    return names;
}

}  // namespace vorna::support
