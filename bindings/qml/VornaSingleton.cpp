// SPDX-License-Identifier: Apache-2.0
#include <bindings/qml/VornaSingleton.h>

#include <bindings/Diagnostics.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/Platform.h>
#include <vorna/ui/attach.h>

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <array>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace vorna::qml {

using bindings::report;

namespace {

std::string utf8(const QString& text) {
    return text.toStdString();
}

/// Converts the text to UTF-8; logs a line and returns std::nullopt if it is not valid UTF-16.
std::optional<std::string> converted(std::string_view operation, const QString& text) {
    if (!text.isValidUtf16()) {
        report({operation, ": the text has an unpaired surrogate; nothing is done"});
        return std::nullopt;
    }
    return utf8(text);
}

void withText(std::string_view operation, const QString& text, void (*run)(TextArgument)) {
    if (const std::optional<std::string> given = converted(operation, text)) {
        run(*given);
    }
}

bool isAbsent(const QVariant& value) {
    return !value.isValid() || value.metaType() == QMetaType::fromType<std::nullptr_t>();
}

/// The outer value is std::nullopt, with a log line, if the custom value cannot be recorded.
std::optional<std::optional<std::string>> customValueOf(std::string_view operation, const QVariant& value) {
    if (isAbsent(value)) {
        return std::optional<std::string>();
    }
    if (!value.canConvert<QString>()) {
        report({operation, ": the custom value is not text; nothing is done"});
        return std::nullopt;
    }
    std::optional<std::string> text = converted(operation, value.toString());
    return text ? std::optional(std::move(text)) : std::nullopt;
}

std::optional<std::uint64_t> secondsOf(std::string_view operation, double value) {
    constexpr double beyond = 18'446'744'073'709'551'616.0;
    if (!(value > -1 && value < beyond)) {
        report({operation, ": a time is not a number of seconds since 1970; nothing is done"});
        return std::nullopt;
    }
    return value < 0 ? 0 : static_cast<std::uint64_t>(value);
}

QVariant variantOf(const std::optional<std::string>& text) {
    return text ? QVariant(QString::fromStdString(*text)) : QVariant();
}

struct TextOption {
    const char* key;
    void (*set)(PlatformOptions& options, std::string value);
};

constexpr std::array<TextOption, 6> textOptions = {{
    {"serviceURL", [](PlatformOptions& o, std::string value) { o.serviceURL = std::move(value); }},
    {"certificateAuthorityFile",
     [](PlatformOptions& o, std::string value) { o.certificateAuthorityFile = std::move(value); }},
    {"bundleIdentifier",
     [](PlatformOptions& o, std::string value) { o.bundleIdentifier = std::move(value); }},
    {"bundleShortVersion",
     [](PlatformOptions& o, std::string value) { o.bundleShortVersion = std::move(value); }},
    {"bundleVersion", [](PlatformOptions& o, std::string value) { o.bundleVersion = std::move(value); }},
    {"dataDirectory", [](PlatformOptions& o, std::string value) { o.dataDirectory = std::move(value); }},
}};

bool setStore(PlatformOptions& options, const QString& name) {
    constexpr std::array<std::pair<const char*, CredentialStoreKind>, 3> kinds = {{
        {"automatic", CredentialStoreKind::automatic},
        {"secretService", CredentialStoreKind::secretService},
        {"file", CredentialStoreKind::file},
    }};
    for (const auto& [known, kind] : kinds) {
        if (name == QLatin1String(known)) {
            options.credentialStore = kind;
            return true;
        }
    }
    return false;
}

/// Returns false if the option or its value is unknown.
bool setOption(PlatformOptions& options, const QString& key, const QVariant& value) {
    const bool isText = value.metaType() == QMetaType::fromType<QString>();
    if (key == QLatin1String("credentialStore")) {
        return isText && setStore(options, value.toString());
    }
    for (const TextOption& option : textOptions) {
        if (key == QLatin1String(option.key)) {
            if (isText && value.toString().isValidUtf16()) {
                option.set(options, utf8(value.toString()));
            }
            return isText || isAbsent(value);
        }
    }
    return false;
}

/// Returns the value with that key, or a default value if there is none or it has another type.
template <class Value>
Value userInfoValue(const Notification& notification, std::string_view key) {
    const auto found = notification.userInfo.find(key);
    const Value* const value =
        found == notification.userInfo.end() ? nullptr : std::get_if<Value>(&found->second);
    return value == nullptr ? Value() : *value;
}

}  // namespace

VornaSingleton::VornaSingleton(QObject* parent) : QObject(parent) {
    using SDK = VornaCoreSDK;
    forward(SDK::RemoteConfigsReady, "remoteConfigFetched", &VornaSingleton::remoteConfigsReady);
    forward(SDK::PaidProductClicked, "identifier", &VornaSingleton::paidProductClicked);
    forward(SDK::OnboardingScreensFinished, "identifier", &VornaSingleton::onboardingScreensFinished);
    forward(SDK::PaywallScreenClosed, "success", &VornaSingleton::paywallScreenClosed);
    forward(SDK::OnboardingScreenClosed, "success", &VornaSingleton::onboardingScreenClosed);
    forward(SDK::PaywallScreenFinished, "identifier", &VornaSingleton::paywallScreenFinished);
    forward(SDK::RestorePurchaseClicked, "success", &VornaSingleton::restorePurchaseClicked);
    observe(SDK::EventListUpdated, [this](const Notification&) { Q_EMIT eventListUpdated(); });
}

void VornaSingleton::observe(std::string_view name, std::function<void(const Notification&)> handler) {
    observations_.push_back(NotificationCenter::defaultCenter().addObserver(
        name, [this, handler = std::move(handler)](const Notification& notification) {
            if (QThread::currentThread() == thread()) {
                handler(notification);
                return;
            }
            {
                const std::lock_guard lock(mutex_);
                posted_.emplace_back([handler, notification] { handler(notification); });
            }
            QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release());
        }));
}

bool VornaSingleton::event(QEvent* event) {
    if (event->type() != QEvent::User) {
        return QObject::event(event);
    }
    std::function<void()> first;
    {
        const std::lock_guard lock(mutex_);
        if (posted_.empty()) {
            return true;
        }
        first = std::move(posted_.front());
        posted_.pop_front();
    }
    first();
    return true;
}

void VornaSingleton::forward(std::string_view name, std::string_view key,
                             void (VornaSingleton::*signal)(bool)) {
    observe(name, [this, key, signal](const Notification& notification) {
        Q_EMIT(this->*signal)(userInfoValue<bool>(notification, key));
    });
}

void VornaSingleton::forward(std::string_view name, std::string_view key,
                             void (VornaSingleton::*signal)(const QString&)) {
    observe(name, [this, key, signal](const Notification& notification) {
        Q_EMIT(this->*signal)(QString::fromStdString(userInfoValue<std::string>(notification, key)));
    });
}

bool VornaSingleton::debug() {
    return VornaCoreSDK::debug;
}

void VornaSingleton::setDebug(bool debug) {
    if (VornaCoreSDK::debug.exchange(debug) != debug) {
        Q_EMIT debugChanged();
    }
}

void VornaSingleton::UsePlatformWithOptions(const QVariantMap& options) {
    try {
        PlatformOptions platform;
        for (auto option = options.begin(); option != options.end(); ++option) {
            if (!setOption(platform, option.key(), option.value())) {
                report({"UsePlatformWithOptions: unknown option or value: ", utf8(option.key()),
                        "; nothing is done"});
                return;
            }
        }
        VornaCoreSDK::UsePlatform(makePlatform(platform));
    } catch (const std::exception&) {
        // Out of memory. The defaults must not stand for what was asked for.
        VornaCoreSDK::UsePlatform(unusablePlatform());
    }
}

void VornaSingleton::Attach(QQuickWindow* window) {
    if (window == nullptr) {
        report({"Attach: the window is null; nothing is done"});
        return;
    }
    ui::attach(*window);
}

void VornaSingleton::InitWithAppID(const QString& appID) {
    withText("InitWithAppID", appID, VornaCoreSDK::Init);
}

QVariant VornaSingleton::GetAppID() {
    return variantOf(VornaCoreSDK::GetAppID());
}

QVariant VornaSingleton::GetUserID() {
    return variantOf(VornaCoreSDK::GetUserID());
}

QVariant VornaSingleton::GetAdid() {
    return variantOf(VornaCoreSDK::GetAdid());
}

void VornaSingleton::SetAdidWithAdid(const QString& adid) {
    withText("SetAdidWithAdid", adid, VornaCoreSDK::SetAdid);
}

QVariant VornaSingleton::GetInstallTime() {
    const std::optional<std::uint64_t> time = VornaCoreSDK::GetInstallTime();
    return time ? QVariant(static_cast<double>(*time)) : QVariant();
}

double VornaSingleton::CurrentTimestamp() {
    return static_cast<double>(VornaCoreSDK::CurrentTimestamp());
}

QString VornaSingleton::GetRemoteConfigWithKeyDefaultValue(const QString& key, const QString& defaultValue) {
    const std::optional<std::string> given = converted("GetRemoteConfigWithKeyDefaultValue", key);
    if (!given) {
        return defaultValue;
    }
    return QString::fromStdString(VornaCoreSDK::GetRemoteConfig(*given, utf8(defaultValue)));
}

void VornaSingleton::EventWithName(const QString& name) {
    withText("EventWithName", name, [](TextArgument text) { VornaCoreSDK::Event(text); });
}

void VornaSingleton::EventWithNameCustomValue(const QString& name, const QVariant& customValue) {
    constexpr std::string_view operation("EventWithNameCustomValue");
    const auto text = converted(operation, name);
    const auto value = customValueOf(operation, customValue);
    if (text && value) {
        VornaCoreSDK::Event(*text, *value);
    }
}

void VornaSingleton::EventWithNameStartTimeEndtimeCustomValue(const QString& name, double startTime,
                                                              double endtime, const QVariant& customValue) {
    constexpr std::string_view operation("EventWithNameStartTimeEndtimeCustomValue");
    const auto text = converted(operation, name);
    const auto start = secondsOf(operation, startTime);
    const auto end = secondsOf(operation, endtime);
    const auto value = customValueOf(operation, customValue);
    if (text && start && end && value) {
        VornaCoreSDK::Event(*text, *start, *end, *value);
    }
}

void VornaSingleton::OnboardingStart() {
    VornaCoreSDK::OnboardingStart();
}

void VornaSingleton::OnboardingStepWithStep(const QString& step) {
    withText("OnboardingStepWithStep", step, VornaCoreSDK::OnboardingStep);
}

void VornaSingleton::OnboardingFinish() {
    VornaCoreSDK::OnboardingFinish();
}

void VornaSingleton::LoginSuccessWithSource(const QString& source) {
    withText("LoginSuccessWithSource", source, VornaCoreSDK::LoginSuccess);
}

void VornaSingleton::InterstitialAdShown() {
    VornaCoreSDK::InterstitialAdShown();
}

void VornaSingleton::InterstitialAdClosed() {
    VornaCoreSDK::InterstitialAdClosed();
}

void VornaSingleton::RewardedAdShown() {
    VornaCoreSDK::RewardedAdShown();
}

void VornaSingleton::RewardedAdClosed() {
    VornaCoreSDK::RewardedAdClosed();
}

void VornaSingleton::RewardedAdClaimed() {
    VornaCoreSDK::RewardedAdClaimed();
}

void VornaSingleton::BannerAdShown() {
    VornaCoreSDK::BannerAdShown();
}

void VornaSingleton::NotificationPermissionGranted() {
    VornaCoreSDK::NotificationPermissionGranted();
}

void VornaSingleton::NotificationPermissionDenied() {
    VornaCoreSDK::NotificationPermissionDenied();
}

void VornaSingleton::LocationPermissionGranted() {
    VornaCoreSDK::LocationPermissionGranted();
}

void VornaSingleton::LocationPermissionDenied() {
    VornaCoreSDK::LocationPermissionDenied();
}

void VornaSingleton::ATTPromptShown() {
    VornaCoreSDK::ATTPromptShown();
}

void VornaSingleton::ATTPermissionGranted() {
    VornaCoreSDK::ATTPermissionGranted();
}

void VornaSingleton::ATTPermissionDenied() {
    VornaCoreSDK::ATTPermissionDenied();
}

void VornaSingleton::PaywallShownWithPaywall(const QString& paywall) {
    withText("PaywallShownWithPaywall", paywall, VornaCoreSDK::PaywallShown);
}

void VornaSingleton::PaywallClosedWithPaywall(const QString& paywall) {
    withText("PaywallClosedWithPaywall", paywall, VornaCoreSDK::PaywallClosed);
}

void VornaSingleton::PaywallAttemptedWithPaywall(const QString& paywall) {
    withText("PaywallAttemptedWithPaywall", paywall, VornaCoreSDK::PaywallAttempted);
}

void VornaSingleton::PaywallPurchasedWithPaywall(const QString& paywall) {
    withText("PaywallPurchasedWithPaywall", paywall, VornaCoreSDK::PaywallPurchased);
}

void VornaSingleton::PaywallCancelledWithPaywall(const QString& paywall) {
    withText("PaywallCancelledWithPaywall", paywall, VornaCoreSDK::PaywallCancelled);
}

void VornaSingleton::TabClickedWithTab(const QString& tab) {
    withText("TabClickedWithTab", tab, VornaCoreSDK::TabClicked);
}

void VornaSingleton::FeatureClickedWithFeature(const QString& feature) {
    withText("FeatureClickedWithFeature", feature, VornaCoreSDK::FeatureClicked);
}

void VornaSingleton::DailyStreakShown() {
    VornaCoreSDK::DailyStreakShown();
}

void VornaSingleton::DailyStreakClaimed() {
    VornaCoreSDK::DailyStreakClaimed();
}

void VornaSingleton::DailyStreakClosed() {
    VornaCoreSDK::DailyStreakClosed();
}

void VornaSingleton::ShowPaywallWithJsonString(const QString& jsonString) {
    withText("ShowPaywallWithJsonString", jsonString, VornaCoreSDK::ShowPaywall);
}

void VornaSingleton::ClosePaywall() {
    VornaCoreSDK::ClosePaywall();
}

void VornaSingleton::ShowPaidProductLoadingScreen() {
    VornaCoreSDK::ShowPaidProductLoadingScreen();
}

void VornaSingleton::ClosePaidProductLoadingScreen() {
    VornaCoreSDK::ClosePaidProductLoadingScreen();
}

void VornaSingleton::ShowOnboardingWithJsonString(const QString& jsonString) {
    withText("ShowOnboardingWithJsonString", jsonString, VornaCoreSDK::ShowOnboarding);
}

void VornaSingleton::CloseOnboarding() {
    VornaCoreSDK::CloseOnboarding();
}

void VornaSingleton::ShowEventList() {
    VornaCoreSDK::ShowEventList();
}

void VornaSingleton::CloseEventList() {
    VornaCoreSDK::CloseEventList();
}

}  // namespace vorna::qml
