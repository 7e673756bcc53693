// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/PreviewSession.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/ui/common/ViewController.h>
#include <vorna/ui/common/Window.h>

#include <QtCore/QCoreApplication>
#include <QtGui/QMouseEvent>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>
#include <variant>

namespace vorna::preview {

namespace {

constexpr std::chrono::milliseconds pollInterval{10};
// Long enough to see that the screen is gone.
constexpr std::chrono::milliseconds reopenDelay{700};
// The facade acts a few turns of the event loop later, or never.
constexpr int mostUnchangedPolls = 25;

constexpr std::array postedNames{VornaCoreSDK::PaidProductClicked,    VornaCoreSDK::OnboardingScreensFinished,
                                 VornaCoreSDK::PaywallScreenClosed,   VornaCoreSDK::OnboardingScreenClosed,
                                 VornaCoreSDK::PaywallScreenFinished, VornaCoreSDK::RestorePurchaseClicked};

QString described(const NotificationValue& value) {
    if (const bool* const flag = std::get_if<bool>(&value)) {
        return *flag ? QStringLiteral("true") : QStringLiteral("false");
    }
    if (const auto* const text = std::get_if<std::string>(&value)) {
        return QStringLiteral("\"%1\"").arg(QString::fromStdString(*text));
    }
    QStringList members;
    for (const auto& [key, text] : std::get<std::map<std::string, std::string>>(value)) {
        members.append(
            QStringLiteral("%1: \"%2\"").arg(QString::fromStdString(key), QString::fromStdString(text)));
    }
    return QStringLiteral("{%1}").arg(members.join(QStringLiteral(", ")));
}

QString described(const Notification& notification) {
    QString text = QString::fromStdString(notification.name);
    for (const auto& [key, value] : notification.userInfo) {
        text += QStringLiteral("  %1 = %2").arg(QString::fromStdString(key), described(value));
    }
    return text;
}

QQuickItem* visibleItem(QQuickItem* root, QStringView name) {
    if (root == nullptr || !root->isVisible()) {
        return nullptr;
    }
    if (root->objectName() == name) {
        return root;
    }
    for (QQuickItem* const child : root->childItems()) {
        if (QQuickItem* const found = visibleItem(child, name)) {
            return found;
        }
    }
    return nullptr;
}

}  // namespace

PreviewSession::PreviewSession(ui::Window& window, std::string mediaService)
    : window_(window),
      mediaService_(std::move(mediaService)) {
    pollTimer_.setInterval(pollInterval);
    connect(&pollTimer_, &QTimer::timeout, this, &PreviewSession::poll);
    reopenTimer_.setSingleShot(true);
    reopenTimer_.setInterval(reopenDelay);
    connect(&reopenTimer_, &QTimer::timeout, this, &PreviewSession::present);
    for (const std::string_view name : postedNames) {
        observations_.push_back(
            NotificationCenter::defaultCenter().addObserver(name, [this](const Notification& notification) {
                // Posted on any thread, also during an operation of the library.
                QMetaObject::invokeMethod(
                    this, [this, notification] { handle(notification); }, Qt::QueuedConnection);
            }));
    }
}

PreviewSession::~PreviewSession() = default;

void PreviewSession::show(const Draft& draft, std::size_t step) {
    clear();
    text_ = withMediaService(draft.text, mediaService_);
    // The library shows nothing for a document without a kind, whichever operation is called.
    kind_ = draft.verdict.kind.value_or(lint::DocumentKind::paywall);
    step_ = kind_ == lint::DocumentKind::onboarding ? step : 0;
    present();
}

std::size_t PreviewSession::currentStep() const {
    return kind_ == lint::DocumentKind::onboarding && isDocumentShown() ? screens() - 1 : 0;
}

bool PreviewSession::isDocumentShown() const {
    return actionButton() != nullptr;
}

void PreviewSession::clear() {
    pollTimer_.stop();
    reopenTimer_.stop();
    state_ = State::idle;
    if (screens() == 0) {
        return;
    }
    if (kind_ == lint::DocumentKind::onboarding) {
        VornaCoreSDK::CloseOnboarding();
    }
    // No operation closes the screen that lists missing fields.
    auto shown = window_.presentedViewControllers();
    std::for_each(shown.rbegin(), shown.rend(), [](const auto& screen) { screen->dismiss(false); });
}

void PreviewSession::present() {
    state_ = State::arriving;
    unchangedPolls_ = 0;
    lastScreens_ = 0;
    pollTimer_.start();
    if (kind_ == lint::DocumentKind::onboarding) {
        VornaCoreSDK::ShowOnboarding(text_);
    } else {
        VornaCoreSDK::ShowPaywall(text_);
    }
}

void PreviewSession::poll() {
    if (window_.isMoving()) {
        return;
    }
    if (state_ == State::leaving) {
        if (screens() == 0) {
            pollTimer_.stop();
            state_ = State::idle;
            reopenTimer_.start();
        }
        return;
    }
    if (screens() == lastScreens_) {
        if (++unchangedPolls_ < mostUnchangedPolls) {
            return;
        }
    } else {
        unchangedPolls_ = 0;
        lastScreens_ = screens();
        if (QQuickItem* const button = actionButton(); button != nullptr && lastScreens_ <= step_) {
            tap(*button);
            return;
        }
    }
    pollTimer_.stop();
    state_ = State::idle;
    Q_EMIT settled();
}

void PreviewSession::tap(const QQuickItem& item) {
    QQuickWindow& window = *window_.quickWindow();
    const QPointF place = item.mapToScene(item.boundingRect().center());
    const QPointF onScreen = window.mapToGlobal(place);
    QMouseEvent press(QEvent::MouseButtonPress, place, onScreen, Qt::LeftButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, place, onScreen, Qt::LeftButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(&window, &release);
}

void PreviewSession::handle(const Notification& notification) {
    Q_EMIT posted(described(notification));
    const bool endsPaywall = notification.name == VornaCoreSDK::PaywallScreenClosed;
    const bool endsOnboarding = notification.name == VornaCoreSDK::OnboardingScreensFinished ||
                                notification.name == VornaCoreSDK::OnboardingScreenClosed;
    // An empty onboarding finishes before anything is shown; reopening it would repeat that forever.
    if (!(endsPaywall || endsOnboarding) || screens() == 0 || state_ == State::leaving) {
        return;
    }
    Q_EMIT closing();
    step_ = 0;
    state_ = State::leaving;
    pollTimer_.start();
    if (endsPaywall) {
        VornaCoreSDK::ClosePaywall();
    } else {
        VornaCoreSDK::CloseOnboarding();
    }
}

QQuickItem* PreviewSession::actionButton() const {
    const auto shown = window_.presentedViewControllers();
    return shown.empty() ? nullptr : visibleItem(shown.back()->view(), u"actionButton");
}

std::size_t PreviewSession::screens() const {
    return window_.presentedViewControllers().size();
}

}  // namespace vorna::preview
