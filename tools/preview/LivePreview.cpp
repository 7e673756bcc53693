// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/LivePreview.h>

#include <tools/preview/Console.h>
#include <tools/preview/QmlObject.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QKeyEvent>

#include <algorithm>
#include <utility>

namespace vorna::preview {

namespace {

constexpr int spaceBetweenWindows = 16;

QString pathOf(const std::string& file) {
    return QFile::decodeName(QByteArray::fromStdString(file));
}

}  // namespace

LivePreview::LivePreview(QQmlEngine& engine, Options options, Draft draft)
    : options_(std::move(options)),
      draft_(std::move(draft)),
      devices_(standardDevices().begin(), standardDevices().end()),
      board_(QFileInfo(pathOf(options_.file)).fileName(), options_.isDark),
      window_(engine, board_),
      session_(window_.window(), options_.mediaService),
      watcher_(pathOf(options_.file)),
      panel_(makeFromQml<QQuickWindow>(engine, QStringLiteral("FindingsPanel.qml"),
                                       {{QStringLiteral("board"), QVariant::fromValue(&board_)}})) {
    const auto standard = std::find_if(devices_.begin(), devices_.end(), [this](const Device& device) {
        return device.size == options_.device.size && device.safeArea == options_.device.safeArea;
    });
    device_ = static_cast<std::size_t>(standard - devices_.begin());
    if (standard == devices_.end()) {
        devices_.push_back(options_.device);
    }
    connect(&watcher_, &DocumentWatcher::mayHaveChanged, this, &LivePreview::fileMayHaveChanged);
    connect(&session_, &PreviewSession::settled, this, &LivePreview::hasSettled);
    connect(&session_, &PreviewSession::closing, this,
            [this] { board_.setStatus(QStringLiteral("closed by the host; shown again soon")); });
    connect(&session_, &PreviewSession::posted, this, [this](const QString& notification) {
        board_.addPosted(notification);
        console::say("posted " + notification.toStdString());
    });
    QCoreApplication::instance()->installEventFilter(this);

    tellDevice();
    window_.become(devices_[device_], hasSafeArea_);
    board_.setFindings(draft_.verdict.findings);
    console::report(options_.file, draft_.verdict);
    QQuickWindow& deviceWindow = window_.quickWindow();
    deviceWindow.show();
    panel_->setPosition(deviceWindow.x() + deviceWindow.width() + spaceBetweenWindows, deviceWindow.y());
    panel_->show();
    deviceWindow.requestActivate();
    session_.show(draft_, static_cast<std::size_t>(options_.step));
}

bool LivePreview::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close && (watched == &window_.quickWindow() || watched == panel_.get())) {
        QCoreApplication::quit();
    }
    if (event->type() == QEvent::KeyPress && watched->isWindowType()) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.modifiers() == Qt::NoModifier && press(key.key())) {
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

bool LivePreview::press(int key) {
    switch (key) {
    case Qt::Key_N:
        choose((device_ + 1) % devices_.size());
        return true;
    case Qt::Key_P:
        choose((device_ + devices_.size() - 1) % devices_.size());
        return true;
    case Qt::Key_S:
        hasSafeArea_ = !hasSafeArea_;
        choose(device_);
        return true;
    case Qt::Key_D:
        board_.setDark(!board_.isDark());
        console::say(board_.isDark() ? "dark desktop" : "light desktop");
        return true;
    case Qt::Key_R:
        show(Step::same);
        return true;
    case Qt::Key_O:
        show(Step::first);
        return true;
    case Qt::Key_Q:
        QCoreApplication::quit();
        return true;
    default:
        return false;
    }
}

void LivePreview::fileMayHaveChanged() {
    auto reading = contents(options_.file);
    if (const auto* const problem = std::get_if<Unreadable>(&reading)) {
        // Between the two halves of a replacement there may be no file.
        board_.setStatus(
            QStringLiteral("the file cannot be read: %1").arg(QString::fromStdString(problem->reason)));
        console::complain(options_.file + ": " + problem->reason);
        return;
    }
    if (std::get<std::string>(reading) != draft_.text) {
        take(check(std::move(std::get<std::string>(reading)), options_.kind));
    }
}

void LivePreview::take(Draft draft) {
    draft_ = std::move(draft);
    board_.setFindings(draft_.verdict.findings);
    console::say("changed " + options_.file);
    console::report(options_.file, draft_.verdict);
    isKept_ = draft_.hasErrors() && session_.isDocumentShown();
    if (isKept_) {
        board_.setStatus(QStringLiteral("the last picture without errors; R shows what there is now"));
        console::say("kept the last picture");
        return;
    }
    show(Step::same);
}

void LivePreview::show(Step step) {
    isKept_ = false;
    const std::size_t before = session_.stepOnShow();
    const std::size_t last = draft_.steps == 0 ? 0 : draft_.steps - 1;
    session_.show(draft_, step == Step::first ? 0 : std::min(before, last));
}

void LivePreview::hasSettled() {
    std::string status = "the document is not shown";
    if (session_.isDocumentShown()) {
        status = "shown at " + devices_[device_].name;
        if (draft_.steps > 0) {
            status += ", step " + std::to_string(session_.stepOnShow()) + ", " +
                      std::to_string(draft_.steps) + " in all";
        }
    }
    board_.setStatus(QString::fromStdString(status));
    console::say(status);
}

void LivePreview::choose(std::size_t device) {
    device_ = device;
    tellDevice();
    window_.become(devices_[device_], hasSafeArea_);
    QQuickWindow& deviceWindow = window_.quickWindow();
    panel_->setPosition(deviceWindow.x() + devices_[device_].size.width() + spaceBetweenWindows,
                        deviceWindow.y());
    // A draft with errors stays out of sight until it is asked for.
    if (!isKept_) {
        show(Step::same);
    }
}

void LivePreview::tellDevice() {
    const Device& device = devices_[device_];
    const std::string safeArea = hasSafeArea_ ? "safe area " + text(device.safeArea) : "no safe area";
    board_.setDevice(QString::fromStdString(device.name + ", " + safeArea));
    console::say("device " + device.name + ", " + safeArea);
}

}  // namespace vorna::preview
