// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/WindowRegistry.h>

#include <QtQuick/QQuickWindow>

#include <gtest/gtest.h>

#include <memory>

namespace vorna::ui {
namespace {

class Registry : public testing::Test {
  protected:
    HostWindow& add(QQuickWindow& quickWindow) {
        return registry.add(std::make_unique<HostWindow>(quickWindow));
    }

    WindowRegistry registry;
    std::unique_ptr<QQuickWindow> firstQuickWindow = std::make_unique<QQuickWindow>();
    std::unique_ptr<QQuickWindow> secondQuickWindow = std::make_unique<QQuickWindow>();
};

TEST_F(Registry, IsEmptyAtFirst) {
    EXPECT_EQ(registry.first(), nullptr);
    EXPECT_EQ(registry.key(), nullptr);
    EXPECT_EQ(registry.find(*firstQuickWindow), nullptr);
}

TEST_F(Registry, FindsWindowsIncludingTheFirst) {
    HostWindow& first = add(*firstQuickWindow);
    HostWindow& second = add(*secondQuickWindow);
    EXPECT_EQ(registry.find(*firstQuickWindow), &first);
    EXPECT_EQ(registry.find(*secondQuickWindow), &second);
    EXPECT_EQ(registry.first(), &first);
    EXPECT_EQ(registry.key(), nullptr) << "adding makes no key window";
}

TEST_F(Registry, ReportsANewKeyWindowOnce) {
    HostWindow& window = add(*firstQuickWindow);
    int changes = 0;
    QObject::connect(&window, &HostWindow::screenChanged, &window, [&] { ++changes; });
    registry.makeKey(window);
    registry.makeKey(window);
    EXPECT_EQ(registry.key(), &window);
    EXPECT_EQ(changes, 1);
}

TEST_F(Registry, ReplacesADestroyedKeyWindowWithTheOneAddedLast) {
    QQuickWindow thirdQuickWindow;
    add(*firstQuickWindow);
    HostWindow& second = add(*secondQuickWindow);
    HostWindow& third = add(thirdQuickWindow);
    registry.makeKey(second);
    int changes = 0;
    QObject::connect(&third, &HostWindow::screenChanged, &third, [&] { ++changes; });
    secondQuickWindow.reset();
    EXPECT_EQ(registry.key(), &third);
    EXPECT_EQ(changes, 1);
}

TEST_F(Registry, KeepsTheKeyWindowWhenAnotherIsDestroyed) {
    add(*firstQuickWindow);
    HostWindow& second = add(*secondQuickWindow);
    registry.makeKey(second);
    firstQuickWindow.reset();
    EXPECT_EQ(registry.key(), &second);
    EXPECT_EQ(registry.first(), &second);
}

TEST_F(Registry, ForgetsAKeyWindowThatWasNeverAdded) {
    auto window = std::make_unique<HostWindow>(*firstQuickWindow);
    registry.makeKey(*window);
    EXPECT_EQ(registry.key(), window.get());
    window.reset();
    EXPECT_EQ(registry.key(), nullptr);
}

TEST_F(Registry, DestroysAWindowWithItsQuickWindow) {
    const QPointer<HostWindow> window = &add(*firstQuickWindow);
    registry.makeKey(*window);
    firstQuickWindow.reset();
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(registry.first(), nullptr);
    EXPECT_EQ(registry.key(), nullptr);
}

}  // namespace
}  // namespace vorna::ui
