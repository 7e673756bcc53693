// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A host's window for tests, with the library attached, operated as by a user: finds controls by name, taps,
/// types, takes pictures. Records every notification that the library posts.

#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/common/ViewController.h>
#include <vorna/ui/common/Window.h>

#include <QtCore/QRectF>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::support {

/// Runs the event loop until the condition holds. False if it still does not after the longest time.
bool eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds longest = std::chrono::seconds(20));

/// Runs the event loop for a while, to see that something does not happen.
void letTimePass(std::chrono::milliseconds time);

/// The first descendant with that object name, in drawing order; null if there is none.
QQuickItem* findItem(QQuickItem* below, std::string_view name);
std::vector<QQuickItem*> findItems(QQuickItem* below, std::string_view name);

class ScreenHost {
  public:
    explicit ScreenHost(QSize size = {375, 667});
    ScreenHost(const ScreenHost&) = delete;
    ScreenHost& operator=(const ScreenHost&) = delete;
    ScreenHost(ScreenHost&&) = delete;
    ScreenHost& operator=(ScreenHost&&) = delete;
    ~ScreenHost();

    QQuickWindow& quickWindow() { return *quickWindow_; }

    ui::Window& window() { return *window_; }

    /// The item that the host shows: a plain colour as large as the window.
    QQuickItem* content() { return content_; }

    /// Destroys the window, as a host may at any time.
    void close();

    /// The presented screens, lowest first.
    std::vector<std::shared_ptr<ui::ViewController>> screens() const {
        return window_->presentedViewControllers();
    }

    /// The view of the topmost screen; null if there is none.
    QQuickItem* topView() const;

    /// In the topmost screen.
    QQuickItem* find(std::string_view name) const { return findItem(topView(), name); }

    /// Waits until no screen moves and everything has been drawn.
    void settle();

    /// In the window's coordinates.
    static QRectF geometry(const QQuickItem* item);

    void click(const QQuickItem* item);
    void click(QPointF position);
    void touch(const QQuickItem* item);
    void press(Qt::Key key);

    /// A picture of the window.
    QImage picture();

    /// Notifications in the order of posting.
    const std::vector<Notification>& notifications() const { return *notifications_; }

    std::vector<std::string> notificationNames() const;

  private:
    std::unique_ptr<QQuickWindow> quickWindow_;
    QQuickItem* content_ = nullptr;
    ui::Window* window_ = nullptr;
    std::shared_ptr<std::vector<Notification>> notifications_ = std::make_shared<std::vector<Notification>>();
    std::vector<NotificationCenter::Observation> observations_;
};

}  // namespace vorna::support
