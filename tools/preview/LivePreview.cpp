// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/LivePreview.h>

#include <tools/common/Console.h>
#include <tools/common/Files.h>
#include <tools/preview/Console.h>
#include <tools/preview/QmlObject.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QKeyEvent>

#include <algorithm>
#include <system_error>
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
    connect(&session_, &PreviewSession::settled, this, &LivePreview::reportSettled);
    connect(&session_, &PreviewSession::closing, this,
            [this] { board_.setStatus(QStringLiteral("closed by the host; reopening soon")); });
    connect(&session_, &PreviewSession::posted, this, [this](const QString& notification) {
        board_.addPosted(notification);
        tools::printLine("posted " + notification.toStdString());
    });
    QCoreApplication::instance()->installEventFilter(this);

    reportDevice();
    window_.resizeTo(devices_[device_], hasSafeArea_);
    board_.setFindings(draft_.verdict.findings);
    printFindings(options_.file, draft_.verdict);
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
        tools::printLine(board_.isDark() ? "dark desktop" : "light desktop");
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
    Result<std::string, std::error_code> text = tools::readFile(options_.file);
    if (!text) {
        // While the file is being replaced there may be none.
        const std::string reason = text.error().message();
        board_.setStatus(QStringLiteral("the file cannot be read: %1").arg(QString::fromStdString(reason)));
        printError(options_.file + ": " + reason);
        return;
    }
    if (*text != draft_.text) {
        update(check(*std::move(text), options_.kind));
    }
}

void LivePreview::update(Draft draft) {
    draft_ = std::move(draft);
    board_.setFindings(draft_.verdict.findings);
    tools::printLine("changed " + options_.file);
    printFindings(options_.file, draft_.verdict);
    isOutdated_ = draft_.hasErrors() && session_.isDocumentShown();
    if (isOutdated_) {
        board_.setStatus(QStringLiteral("the last version without errors; press R for the current one"));
        tools::printLine("kept the last version");
        return;
    }
    show(Step::same);
}

void LivePreview::show(Step step) {
    isOutdated_ = false;
    const std::size_t before = session_.currentStep();
    const std::size_t last = draft_.steps == 0 ? 0 : draft_.steps - 1;
    session_.show(draft_, step == Step::first ? 0 : std::min(before, last));
}

void LivePreview::reportSettled() {
    std::string status = "the document is not shown";
    if (session_.isDocumentShown()) {
        status = "shown at " + devices_[device_].name;
        if (draft_.steps > 0) {
            status += ", step " + std::to_string(session_.currentStep()) + ", " +
                      std::to_string(draft_.steps) + " in all";
        }
    }
    board_.setStatus(QString::fromStdString(status));
    tools::printLine(status);
}

void LivePreview::choose(std::size_t device) {
    device_ = device;
    reportDevice();
    window_.resizeTo(devices_[device_], hasSafeArea_);
    QQuickWindow& deviceWindow = window_.quickWindow();
    panel_->setPosition(deviceWindow.x() + devices_[device_].size.width() + spaceBetweenWindows,
                        deviceWindow.y());
    // A draft with errors is shown only on request.
    if (!isOutdated_) {
        show(Step::same);
    }
}

void LivePreview::reportDevice() {
    const Device& device = devices_[device_];
    const std::string safeArea = hasSafeArea_ ? "safe area " + text(device.safeArea) : "no safe area";
    board_.setDevice(QString::fromStdString(device.name + ", " + safeArea));
    tools::printLine("device " + device.name + ", " + safeArea);
}

}  // namespace vorna::preview
