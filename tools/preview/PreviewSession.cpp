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

constexpr std::chrono::milliseconds lookInterval{10};
// So long the author sees that the screen is gone.
constexpr std::chrono::milliseconds pauseBeforeNextTime{700};
// What the facade is asked to do is done a few turns of the event loop later, or never.
constexpr int looksUntilNothingComes = 25;

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

QQuickItem* visibleItem(QQuickItem* below, QStringView name) {
    if (below == nullptr || !below->isVisible()) {
        return nullptr;
    }
    if (below->objectName() == name) {
        return below;
    }
    for (QQuickItem* const child : below->childItems()) {
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
    clock_.setInterval(lookInterval);
    connect(&clock_, &QTimer::timeout, this, &PreviewSession::look);
    pause_.setSingleShot(true);
    pause_.setInterval(pauseBeforeNextTime);
    connect(&pause_, &QTimer::timeout, this, &PreviewSession::hand);
    for (const std::string_view name : postedNames) {
        observations_.push_back(
            NotificationCenter::defaultCenter().addObserver(name, [this](const Notification& notification) {
                // It may come from any thread, and from within an operation of the library.
                QMetaObject::invokeMethod(
                    this, [this, notification] { hear(notification); }, Qt::QueuedConnection);
            }));
    }
}

PreviewSession::~PreviewSession() = default;

void PreviewSession::show(const Draft& draft, std::size_t step) {
    clear();
    text_ = withMediaService(draft.text, mediaService_);
    // The library shows nothing for a text that tells no kind, whoever is asked.
    kind_ = draft.verdict.kind.value_or(lint::DocumentKind::paywall);
    step_ = kind_ == lint::DocumentKind::onboarding ? step : 0;
    hand();
}

std::size_t PreviewSession::stepOnShow() const {
    return kind_ == lint::DocumentKind::onboarding && isDocumentShown() ? screens() - 1 : 0;
}

bool PreviewSession::isDocumentShown() const {
    return actionButton() != nullptr;
}

void PreviewSession::clear() {
    clock_.stop();
    pause_.stop();
    state_ = State::idle;
    if (screens() == 0) {
        return;
    }
    if (kind_ == lint::DocumentKind::onboarding) {
        VornaCoreSDK::CloseOnboarding();
    }
    // The screen that says what a document lacks has no operation that closes it.
    auto shown = window_.presentedViewControllers();
    std::for_each(shown.rbegin(), shown.rend(), [](const auto& screen) { screen->dismiss(false); });
}

void PreviewSession::hand() {
    state_ = State::arriving;
    looks_ = 0;
    seen_ = 0;
    clock_.start();
    if (kind_ == lint::DocumentKind::onboarding) {
        VornaCoreSDK::ShowOnboarding(text_);
    } else {
        VornaCoreSDK::ShowPaywall(text_);
    }
}

void PreviewSession::look() {
    if (window_.isMoving()) {
        return;
    }
    if (state_ == State::leaving) {
        if (screens() == 0) {
            clock_.stop();
            state_ = State::idle;
            pause_.start();
        }
        return;
    }
    if (screens() == seen_) {
        if (++looks_ < looksUntilNothingComes) {
            return;
        }
    } else {
        looks_ = 0;
        seen_ = screens();
        if (QQuickItem* const button = actionButton(); button != nullptr && seen_ <= step_) {
            tap(*button);
            return;
        }
    }
    clock_.stop();
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

void PreviewSession::hear(const Notification& notification) {
    Q_EMIT posted(described(notification));
    const bool endsPaywall = notification.name == VornaCoreSDK::PaywallScreenClosed;
    const bool endsOnboarding = notification.name == VornaCoreSDK::OnboardingScreensFinished ||
                                notification.name == VornaCoreSDK::OnboardingScreenClosed;
    // An empty onboarding is over before anything is shown; again and again would tell nothing new.
    if (!(endsPaywall || endsOnboarding) || screens() == 0 || state_ == State::leaving) {
        return;
    }
    Q_EMIT closing();
    step_ = 0;
    state_ = State::leaving;
    clock_.start();
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
