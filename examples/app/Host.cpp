// SPDX-License-Identifier: Apache-2.0
#include <examples/app/Host.h>

#include <vorna/core/VornaCoreSDK.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <chrono>
#include <cstdio>
#include <string>
#include <utility>
#include <variant>

namespace app {

using vorna::NotificationCenter;
using vorna::VornaCoreSDK;

namespace {

QString describe(const vorna::Notification& notification) {
    QString text = QString::fromStdString(notification.name);
    for (const auto& [key, value] : notification.userInfo) {
        text += QStringLiteral("  ") + QString::fromStdString(key) + QStringLiteral(" = ");
        if (const bool* const flag = std::get_if<bool>(&value)) {
            text += *flag ? QStringLiteral("true") : QStringLiteral("false");
        } else if (const auto* const words = std::get_if<std::string>(&value)) {
            text += QStringLiteral("\"%1\"").arg(QString::fromStdString(*words));
        }
    }
    return text;
}

std::string identifierOf(const vorna::Notification& notification) {
    return std::get<std::string>(notification.userInfo.at("identifier"));
}

}  // namespace

Host::Host(Documents documents) : documents_(std::move(documents)) {
    for (const std::string_view name :
         {VornaCoreSDK::RemoteConfigsReady, VornaCoreSDK::PaidProductClicked,
          VornaCoreSDK::OnboardingScreensFinished, VornaCoreSDK::PaywallScreenClosed,
          VornaCoreSDK::OnboardingScreenClosed, VornaCoreSDK::PaywallScreenFinished,
          VornaCoreSDK::RestorePurchaseClicked}) {
        observations_.push_back(NotificationCenter::defaultCenter().addObserver(
            name, [this](const vorna::Notification& notification) {
                // Some are posted on the library's threads; the pages belong to this one.
                QMetaObject::invokeMethod(this, [this, notification] { handle(notification); });
            }));
    }
}

QString Host::welcomeText() const {
    return QString::fromStdString(VornaCoreSDK::GetRemoteConfig("welcome_text", "Welcome"));
}

QStringList Host::configuration() const {
    QStringList lines;
    for (const char* const key : {"welcome_text", "paywall_name"}) {
        const std::string value = VornaCoreSDK::GetRemoteConfig(key, "(not configured)");
        lines.append(QStringLiteral("%1 = %2").arg(QString::fromUtf8(key), QString::fromStdString(value)));
    }
    return lines;
}

void Host::showEventList() {
    VornaCoreSDK::ShowEventList();
}

void Host::recordEvent() {
    ++recorded_;
    VornaCoreSDK::Event("button_tapped", std::to_string(recorded_));
    print(QStringLiteral("recorded button_tapped %1").arg(recorded_));
}

void Host::showOnboarding(const QString& name) {
    VornaCoreSDK::OnboardingStart();
    VornaCoreSDK::ShowOnboarding(documents_.document("onboarding/" + name.toStdString()));
}

void Host::showPaywall(const QString& name) {
    VornaCoreSDK::PaywallShown(name.toStdString());
    VornaCoreSDK::ShowPaywall(documents_.document("paywall/" + name.toStdString()));
}

void Host::pretendToBuy() {
    VornaCoreSDK::ShowPaidProductLoadingScreen();
    QTimer::singleShot(std::chrono::seconds(2), this, [] {
        VornaCoreSDK::ClosePaidProductLoadingScreen();
        // A real host closes the paywall when the store has answered; this one never buys anything.
        VornaCoreSDK::PaywallCancelled("example");
        VornaCoreSDK::ClosePaywall();
    });
}

void Host::handle(const vorna::Notification& notification) {
    print(describe(notification));
    react(notification);
}

void Host::react(const vorna::Notification& notification) {
    if (notification.name == VornaCoreSDK::RemoteConfigsReady) {
        Q_EMIT configurationChanged();
    } else if (notification.name == VornaCoreSDK::PaywallScreenFinished) {
        VornaCoreSDK::PaywallAttempted(identifierOf(notification));
        pretendToBuy();
    } else if (notification.name == VornaCoreSDK::PaywallScreenClosed) {
        VornaCoreSDK::PaywallClosed("example");
        VornaCoreSDK::ClosePaywall();
    } else if (notification.name == VornaCoreSDK::OnboardingScreensFinished ||
               notification.name == VornaCoreSDK::OnboardingScreenClosed) {
        VornaCoreSDK::OnboardingFinish();
        VornaCoreSDK::CloseOnboarding();
    }
}

void Host::print(const QString& line) {
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
    log_.prepend(line);
    Q_EMIT logChanged();
}

}  // namespace app
