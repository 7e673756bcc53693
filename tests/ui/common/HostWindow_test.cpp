// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/attach.h>

#include <tests/support/ui/PlainScreen.h>
#include <tests/support/ui/ScreenHost.h>

#include <vorna/ui/common/MediaScreenViewController.h>
#include <vorna/ui/common/ObjectTree.h>

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <memory>

namespace vorna::ui {
namespace {

using support::eventually;
using support::findItem;
using support::letTimePass;
using support::PlainScreen;
using support::ScreenHost;
using support::TapCounter;
using testing::ElementsAre;

class HostWindow : public testing::Test {
  protected:
    TapCounter& addToHost(QRectF geometry) {
        auto& item = makeChild<TapCounter>(*host.quickWindow().contentItem());
        item.setParentItem(host.quickWindow().contentItem());
        item.setPosition(geometry.topLeft());
        item.setSize(geometry.size());
        return item;
    }

    std::shared_ptr<PlainScreen> show(ModalPresentationStyle style = ModalPresentationStyle::fullScreen) {
        auto screen = PlainScreen::make(style);
        const auto shown = host.screens();
        (shown.empty() ? host.window().rootViewController() : shown.back())->present(screen, false);
        return screen;
    }

    ScreenHost host{{400, 600}};
};

TEST_F(HostWindow, HasItsItemsUnderOneItemOfItsSize) {
    QQuickItem* const layer = host.content()->parentItem();
    EXPECT_NE(layer, host.quickWindow().contentItem());
    EXPECT_EQ(layer->parentItem(), host.quickWindow().contentItem());
    EXPECT_EQ(layer->size(), QSizeF(400, 600));
    EXPECT_EQ(ScreenHost::geometry(host.content()), QRectF(0, 0, 400, 600));
}

TEST_F(HostWindow, AdoptsItemsThatAreAddedLater) {
    TapCounter& item = addToHost({10, 20, 100, 50});
    EXPECT_TRUE(eventually([&] { return item.parentItem() == host.content()->parentItem(); }));
    EXPECT_EQ(ScreenHost::geometry(&item), QRectF(10, 20, 100, 50));
    host.click(&item);
    EXPECT_EQ(item.taps(), 1);
    show();
    EXPECT_FALSE(item.isVisible());
    TapCounter& late = addToHost({10, 20, 100, 50});
    letTimePass(std::chrono::milliseconds(10));
    EXPECT_FALSE(late.isVisible()) << "later items are below the screens too";
}

TEST_F(HostWindow, CannotBeReachedBelowAScreen) {
    TapCounter& item = addToHost({0, 0, 400, 600});
    const auto first = show(ModalPresentationStyle::overFullScreen);
    first->counter()->setSize({100, 100});
    host.click(QPointF(200, 300));
    EXPECT_EQ(item.taps(), 0) << "beside the control above, over the host's";
    host.click(QPointF(50, 50));
    EXPECT_EQ(first->counter()->taps(), 1);
    const auto second = show(ModalPresentationStyle::overFullScreen);
    second->counter()->setSize({10, 10});
    host.click(QPointF(50, 50));
    EXPECT_EQ(first->counter()->taps(), 1);
    second->dismiss(false);
    first->dismiss(false);
    host.click(QPointF(200, 300));
    EXPECT_EQ(item.taps(), 1);
}

TEST_F(HostWindow, CannotBeReachedByTheKeyboardBelowAScreen) {
    TapCounter& item = addToHost({0, 0, 100, 100});
    TapCounter& other = addToHost({0, 100, 100, 100});
    letTimePass(std::chrono::milliseconds(10));
    item.forceActiveFocus();
    const auto screen = show(ModalPresentationStyle::overFullScreen);
    EXPECT_TRUE(screen->counter()->hasActiveFocus());
    for (int i = 0; i < 5; ++i) {
        host.press(Qt::Key_Tab);
        EXPECT_FALSE(item.hasActiveFocus());
        EXPECT_FALSE(other.hasActiveFocus());
        host.press(Qt::Key_Space);
    }
    EXPECT_EQ(item.keys() + other.keys(), 0);
    EXPECT_EQ(screen->counter()->keys(), 5);
}

TEST_F(HostWindow, GetsTheFocusBack) {
    TapCounter& item = addToHost({0, 0, 100, 100});
    TapCounter& other = addToHost({0, 100, 100, 100});
    letTimePass(std::chrono::milliseconds(10));
    other.forceActiveFocus();
    item.forceActiveFocus();
    ASSERT_TRUE(item.hasActiveFocus());
    const auto first = show();
    const auto second = show();
    EXPECT_TRUE(second->counter()->hasActiveFocus());
    second->dismiss(false);
    EXPECT_TRUE(first->counter()->hasActiveFocus());
    first->dismiss(false);
    EXPECT_TRUE(item.hasActiveFocus());
    host.press(Qt::Key_Space);
    EXPECT_EQ(item.keys(), 1);
}

TEST_F(HostWindow, GetsTheFocusBackFromTheMiddleToo) {
    TapCounter& item = addToHost({0, 0, 100, 100});
    letTimePass(std::chrono::milliseconds(10));
    item.forceActiveFocus();
    const auto first = show();
    const auto second = show();
    first->dismiss(false);
    EXPECT_TRUE(second->counter()->hasActiveFocus());
    second->dismiss(false);
    EXPECT_TRUE(item.hasActiveFocus());
}

TEST_F(HostWindow, GetsTheFocusBackAfterAnimations) {
    TapCounter& item = addToHost({0, 0, 100, 100});
    letTimePass(std::chrono::milliseconds(10));
    item.forceActiveFocus();
    const auto screen = PlainScreen::make();
    host.window().rootViewController()->present(screen, true);
    host.settle();
    EXPECT_TRUE(screen->counter()->hasActiveFocus());
    screen->dismiss(true);
    host.settle();
    EXPECT_TRUE(item.hasActiveFocus());
}

TEST_F(HostWindow, SurvivesTheLossOfTheFocusedItem) {
    auto item = std::make_unique<TapCounter>();
    item->setParentItem(host.content());
    item->forceActiveFocus();
    const auto screen = show();
    item.reset();
    screen->dismiss(false);
    EXPECT_TRUE(host.content()->parentItem()->isEnabled());
}

TEST_F(HostWindow, ResizesEverythingWithItself) {
    const auto screen = show();
    host.quickWindow().resize(500, 700);
    EXPECT_TRUE(eventually([&] { return screen->view()->size() == QSizeF(500, 700); }));
    EXPECT_EQ(host.content()->parentItem()->size(), QSizeF(500, 700));
    EXPECT_EQ(host.window().screenSize(), QSizeF(500, 700));
}

TEST_F(HostWindow, ResizedWhileAScreenArrivesEndsInPlace) {
    const auto screen = PlainScreen::make();
    host.window().rootViewController()->present(screen, true);
    letTimePass(std::chrono::milliseconds(50));
    host.quickWindow().resize(300, 900);
    host.settle();
    EXPECT_TRUE(eventually([&] { return ScreenHost::geometry(screen->view()) == QRectF(0, 0, 300, 900); }));
}

TEST_F(HostWindow, IsAttachedOnce) {
    EXPECT_EQ(&attach(host.quickWindow()), &host.window());
    EXPECT_EQ(&Window::forQuickWindow(host.quickWindow()), &host.window());
    EXPECT_EQ(Window::firstWindow(), &host.window());
}

TEST_F(HostWindow, ReportsNewInsetsOnce) {
    int changes = 0;
    QObject::connect(&host.window(), &Window::safeAreaInsetsChanged, [&] { ++changes; });
    EXPECT_EQ(host.window().safeAreaInsets(), QMarginsF());
    host.window().setSafeAreaInsets({1, 47, 2, 34});
    host.window().setSafeAreaInsets({1, 47, 2, 34});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(host.window().safeAreaTop(), 47);
    EXPECT_EQ(host.window().safeAreaLeft(), 1);
    EXPECT_EQ(host.window().safeAreaRight(), 2);
    EXPECT_EQ(host.window().safeAreaBottom(), 34);
}

TEST(SeveralWindows, TheKeyWindowIsTheOneActivatedLast) {
    ScreenHost first({300, 300});
    EXPECT_EQ(Window::keyWindow(), &first.window());
    auto second = std::make_unique<ScreenHost>(QSize(200, 200));
    EXPECT_EQ(Window::keyWindow(), &second->window());
    EXPECT_EQ(Window::firstWindow(), &first.window());

    first.quickWindow().requestActivate();
    EXPECT_TRUE(eventually([&] { return Window::keyWindow() == &first.window(); }));
    second->quickWindow().requestActivate();
    EXPECT_TRUE(eventually([&] { return Window::keyWindow() == &second->window(); }));

    second.reset();
    EXPECT_EQ(Window::keyWindow(), &first.window());
    EXPECT_EQ(Window::firstWindow(), &first.window());
}

TEST(SeveralWindows, ScreensStayInTheirs) {
    ScreenHost first({300, 300});
    ScreenHost second({200, 200});
    const auto screen = PlainScreen::make();
    first.window().rootViewController()->present(screen, false);
    EXPECT_EQ(screen->window(), &first.window());
    EXPECT_TRUE(second.content()->isVisible());
    second.window().rootViewController()->present(screen, false, [] { ADD_FAILURE(); });
    EXPECT_THAT(first.screens(), ElementsAre(screen));
    EXPECT_TRUE(second.screens().empty());
    first.close();
    second.window().rootViewController()->present(screen, false);
    EXPECT_THAT(second.screens(), ElementsAre(screen));
}

/// A host's window written in QML with Qt Quick Controls.
class ControlsWindow : public testing::Test {
  protected:
    ControlsWindow() {
        QQmlComponent component(&engine_);
        component.setData(R"(
            import QtQuick
            import QtQuick.Controls
            ApplicationWindow {
                width: 400; height: 600; visible: true
                header: ToolBar { objectName: "header"; height: 40 }
                footer: ToolBar { objectName: "footer"; height: 30 }
                property int accepted: 0
                property alias popup: popup
                Button { id: button; objectName: "button"; anchors.centerIn: parent; text: "Open"; focus: true
                         onClicked: popup.open() }
                Rectangle { objectName: "filler"; anchors.fill: parent; z: -1 }
                Dialog { id: popup; anchors.centerIn: Overlay.overlay; width: 200; height: 200; modal: true
                         Button { objectName: "inside"; text: "Yes"; width: 100; height: 50
                                  onClicked: { accepted++; popup.close() } } }
            })",
                          QUrl(QStringLiteral("file:///host.qml")));
        window_.reset(qobject_cast<QQuickWindow*>(component.create()));
        EXPECT_NE(window_, nullptr) << component.errorString().toStdString();
        attached_ = &attach(*window_);
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
        window_->requestActivate();
        EXPECT_TRUE(eventually([&] { return window_->isActive(); }));
    }

    QQuickItem* find(std::string_view name) { return findItem(window_->contentItem(), name); }

    void click(const QQuickItem* item) {
        ASSERT_NE(item, nullptr);
        QTest::mouseClick(window_.get(), Qt::LeftButton, {}, ScreenHost::geometry(item).center().toPoint());
    }

    QQmlEngine engine_;
    std::unique_ptr<QQuickWindow> window_;
    Window* attached_ = nullptr;
};

TEST_F(ControlsWindow, KeepsItsLayout) {
    EXPECT_EQ(ScreenHost::geometry(find("header")), QRectF(0, 0, 400, 40));
    EXPECT_EQ(ScreenHost::geometry(find("footer")), QRectF(0, 570, 400, 30));
    EXPECT_EQ(ScreenHost::geometry(find("filler")), QRectF(0, 40, 400, 530));
    window_->resize(500, 700);
    EXPECT_TRUE(eventually([&] { return ScreenHost::geometry(find("filler")) == QRectF(0, 40, 500, 630); }));
    EXPECT_EQ(ScreenHost::geometry(find("footer")), QRectF(0, 670, 500, 30));
}

TEST_F(ControlsWindow, KeepsItsPopups) {
    click(find("button"));
    EXPECT_TRUE(eventually([&] {
        return find("inside") != nullptr && find("inside")->isVisible() &&
               window_->property("popup").value<QObject*>()->property("opened").toBool();
    }));
    click(find("inside"));
    EXPECT_EQ(window_->property("accepted").toInt(), 1);
}

TEST_F(ControlsWindow, IsCoveredByAScreenAndReappears) {
    const auto screen = PlainScreen::make();
    attached_->rootViewController()->present(screen, false);
    EXPECT_EQ(ScreenHost::geometry(screen->view()), QRectF(0, 0, 400, 600)) << "the bars too";
    for (const char* const name : {"header", "footer", "button", "filler"}) {
        EXPECT_FALSE(find(name)->isVisible()) << name;
    }
    screen->dismiss(false);
    EXPECT_TRUE(find("button")->isVisible());
    EXPECT_TRUE(find("button")->hasActiveFocus());
}

}  // namespace
}  // namespace vorna::ui
