// SPDX-License-Identifier: Apache-2.0
#include <examples/app/Tour.h>

#include <vorna/ui/common/ViewController.h>
#include <vorna/ui/common/Window.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QEvent>
#include <QtCore/QEventLoop>
#include <QtCore/QProcess>
#include <QtGui/QDesktopServices>
#include <QtGui/QImage>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace app {

namespace {

void collect(QQuickItem* item, std::string_view name, std::vector<QQuickItem*>& found) {
    if (!item->isVisible()) {
        return;
    }
    if (item->objectName().toStdString() == name) {
        found.push_back(item);
    }
    for (QQuickItem* const child : item->childItems()) {
        collect(child, name, found);
    }
}

}  // namespace

Tour::Tour(vorna::ui::Window& window, QString folder) : window_(window), folder_(std::move(folder)) {
    QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "openLink");
    window_.quickWindow()->installEventFilter(this);
}

Tour::~Tour() {
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
}

void Tour::openLink(const QUrl& url) {
    opened_.append(url.toString());
    std::printf("tour: would open %s\n", qUtf8Printable(url.toString()));
    std::fflush(stdout);
}

bool Tour::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        ++clicks_;
    }
    return QObject::eventFilter(watched, event);
}

bool Tour::run() {
    const bool arrived = startPage() && onboarding() && paywall() && video() && eventList() && incomplete();
    std::printf("tour: %d pictures in %s\n", pictures_, qUtf8Printable(folder_));
    return arrived;
}

bool Tour::startPage() {
    // The pointer reaches a window only once the X server shows it.
    return waitFor("the window", [this] { return window_.quickWindow()->isExposed(); }) &&
           waitForItem("recordEvent") && picture(QStringLiteral("start")) && click("recordEvent") &&
           click("recordEvent");
}

bool Tour::onboarding() {
    if (!click("showOnboarding") || !waitForScreens(1)) {
        return false;
    }
    pause(std::chrono::milliseconds(900));
    if (!picture(QStringLiteral("onboarding-first-step")) || !click("actionButton")) {
        return false;
    }
    // On a busy machine it may be over before it is observed.
    if (!waitFor("the push",
                 [this] { return window_.isMoving() || window_.presentedViewControllers().size() == 2; })) {
        return false;
    }
    pause(std::chrono::milliseconds(100));
    if (!picture(QStringLiteral("onboarding-push")) || !waitForScreens(2)) {
        return false;
    }
    pause(std::chrono::milliseconds(900));
    if (!picture(QStringLiteral("onboarding-second-step")) || !click("actionButton") || !waitForScreens(3) ||
        !waitForItem("exitButton")) {
        return false;
    }
    // The last step sells: its selection is posted at the end of the sequence.
    if (!click("productCell", 0)) {
        return false;
    }
    pause(std::chrono::milliseconds(500));
    return picture(QStringLiteral("onboarding-last-step")) && click("actionButton") && waitForScreens(0);
}

bool Tour::paywall() {
    if (!click("showPaywall") || !waitForScreens(1) || !waitForItem("exitButton")) {
        return false;
    }
    pause(std::chrono::milliseconds(900));
    if (!picture(QStringLiteral("paywall")) || !click("productCell", 0)) {
        return false;
    }
    pause(std::chrono::milliseconds(200));
    if (!picture(QStringLiteral("paywall-other-product")) || !click("restoreButton") ||
        !click("termsOfUseButton") || !waitFor("the link", [this] { return !opened_.isEmpty(); }) ||
        !click("actionButton") || !waitForItem("spinner")) {
        return false;
    }
    pause(std::chrono::milliseconds(600));
    if (!picture(QStringLiteral("paywall-purchase")) || !waitForScreens(0)) {
        return false;
    }
    // Once more, and leave by the close button.
    return click("showPaywall") && waitForScreens(1) && waitForItem("exitButton") && click("exitButton") &&
           waitForScreens(0);
}

bool Tour::video() {
    if (!click("showVideoPaywall") || !waitForScreens(1) || !waitForItem("exitButton")) {
        return false;
    }
    pause(std::chrono::milliseconds(2500));
    return picture(QStringLiteral("paywall-video")) && click("exitButton") && waitForScreens(0);
}

bool Tour::eventList() {
    if (!click("showEventList") || !waitForScreens(1) || !waitForItem("leftBarButton")) {
        return false;
    }
    pause(std::chrono::milliseconds(500));
    return picture(QStringLiteral("event-list")) && click("leftBarButton") && waitForScreens(0) &&
           picture(QStringLiteral("notifications"));
}

bool Tour::incomplete() {
    // The error screen cannot be closed, so it comes last.
    if (!click("showIncomplete") || !waitForScreens(1)) {
        return false;
    }
    pause(std::chrono::milliseconds(700));
    while (find("actionButton") != nullptr) {
        const std::size_t before = window_.presentedViewControllers().size();
        if (!click("actionButton") || !waitForScreens(before + 1)) {
            return false;
        }
        pause(std::chrono::milliseconds(700));
    }
    return picture(QStringLiteral("incomplete-document"));
}

QQuickItem* Tour::find(std::string_view name, int number) const {
    std::vector<QQuickItem*> found;
    const auto screens = window_.presentedViewControllers();
    QQuickItem* const from = screens.empty() ? window_.quickWindow()->contentItem() : screens.back()->view();
    if (from != nullptr) {
        collect(from, name, found);
    }
    const auto index = static_cast<std::size_t>(number);
    return index < found.size() ? found[index] : nullptr;
}

bool Tour::waitFor(std::string_view what, const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(std::chrono::seconds(30));
    while (!condition()) {
        if (deadline.hasExpired()) {
            std::printf("tour: %s did not appear\n", std::string(what).c_str());
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    }
    return true;
}

bool Tour::waitForItem(std::string_view name) {
    return waitFor(name, [&] { return find(name) != nullptr && !window_.isMoving(); });
}

bool Tour::waitForScreens(std::size_t count) {
    return waitFor("a screen",
                   [&] { return window_.presentedViewControllers().size() == count && !window_.isMoving(); });
}

void Tour::pause(std::chrono::milliseconds time) {
    const QDeadlineTimer deadline(time);
    while (!deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

bool Tour::click(std::string_view name, int number) {
    const QQuickItem* const item = find(name, number);
    if (item == nullptr) {
        std::printf("tour: %s not found\n", std::string(name).c_str());
        return false;
    }
    const QQuickWindow& window = *window_.quickWindow();
    const QPointF inWindow = item->mapToScene(item->boundingRect().center());
    const QPointF onScreen = window.mapToGlobal(inWindow) * window.effectiveDevicePixelRatio();
    const int before = clicks_;
    QProcess pointer;
    pointer.start(QStringLiteral("xdotool"),
                  {QStringLiteral("mousemove"), QString::number(std::lround(onScreen.x())),
                   QString::number(std::lround(onScreen.y())), QStringLiteral("click"), QStringLiteral("1")});
    if (!pointer.waitForFinished() || pointer.exitCode() != 0) {
        std::printf("tour: xdotool failed to click\n");
        return false;
    }
    return waitFor("the click on " + std::string(name), [this, before] { return clicks_ > before; });
}

bool Tour::picture(const QString& name) {
    const QString file = QDir(folder_).filePath(
        QStringLiteral("%1-%2.png").arg(++pictures_, 2, 10, QLatin1Char('0')).arg(name));
    if (!window_.quickWindow()->grabWindow().save(file)) {
        std::printf("tour: cannot write %s\n", qUtf8Printable(file));
        return false;
    }
    return true;
}

}  // namespace app
