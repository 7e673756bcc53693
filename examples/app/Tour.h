// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A scripted walk through the application, with real clicks of the X server's pointer and a numbered picture
/// of each screen.

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUrl>

#include <chrono>
#include <functional>
#include <string_view>

class QQuickItem;

namespace vorna::ui {
class Window;
}

namespace app {

class Tour : public QObject {
    Q_OBJECT

  public:
    /// Writes pictures into the folder, which must exist.
    Tour(vorna::ui::Window& window, QString folder);
    Tour(const Tour&) = delete;
    Tour& operator=(const Tour&) = delete;
    Tour(Tour&&) = delete;
    Tour& operator=(Tour&&) = delete;
    ~Tour() override;

    /// Walks to the end. Prints a line and returns false if something expected does not appear.
    bool run();

    /// Replaces the desktop's URL handler, as there may be no desktop.
    Q_INVOKABLE void openLink(const QUrl& url);

    /// Counts the clicks that reach the window.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QQuickItem* find(std::string_view name, int number = 0) const;
    bool waitFor(std::string_view what, const std::function<bool()>& condition);
    bool waitForItem(std::string_view name);
    bool waitForScreens(std::size_t count);
    static void pause(std::chrono::milliseconds time);
    bool click(std::string_view name, int number = 0);
    bool picture(const QString& name);

    bool startPage();
    bool onboarding();
    bool paywall();
    bool video();
    bool eventList();
    bool incomplete();

    vorna::ui::Window& window_;
    const QString folder_;
    int pictures_ = 0;
    int clicks_ = 0;
    QStringList opened_;
};

}  // namespace app
