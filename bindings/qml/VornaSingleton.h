// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library for QML, as the singleton `VornaCoreSDK` of the module `Vorna`:
///
///     import Vorna
///
///     Component.onCompleted: {
///         VornaCoreSDK.Attach(root)
///         VornaCoreSDK.InitWithAppID("my-app")
///         VornaCoreSDK.PaywallShownWithPaywall("main")
///     }
///
/// Each operation of the facade has its name followed by the names of its arguments, as in
/// `GetRemoteConfigWithKeyDefaultValue`. Absent results are undefined. Times in seconds are exact up to 2^53.
/// Text with an unpaired surrogate is refused with a log line.

#include <vorna/platform/Mutex.h>
#include <vorna/platform/NotificationCenter.h>

#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtQmlIntegration/qqmlintegration.h>
#include <QtQuick/QQuickWindow>

#include <deque>
#include <functional>
#include <mutex>
#include <string_view>
#include <vector>

namespace vorna::qml {

/// One per engine, on the engine's thread, which is the main thread.
class VornaSingleton : public QObject {
    Q_OBJECT
    /// Debug output on standard output. Off by default.
    Q_PROPERTY(bool debug READ debug WRITE setDebug NOTIFY debugChanged)
    QML_NAMED_ELEMENT(VornaCoreSDK)
    QML_SINGLETON

  public:
    explicit VornaSingleton(QObject* parent = nullptr);

    static bool debug();
    void setDebug(bool debug);

    // Set-up

    /// Configures how the library uses the system; call it before any other operation. The keys are those of
    /// `PlatformOptions`: serviceURL, certificateAuthorityFile, bundleIdentifier, bundleShortVersion,
    /// bundleVersion, dataDirectory, and credentialStore, which is "automatic", "secretService" or "file".
    /// Options with any other key or value are refused with a log line.
    Q_INVOKABLE static void UsePlatformWithOptions(const QVariantMap& options);

    /// Attaches a window to show the screens in, and follows the application's lifecycle; see
    /// `vorna::ui::attach`. Null only logs a line.
    Q_INVOKABLE static void Attach(QQuickWindow* window);

    Q_INVOKABLE static void InitWithAppID(const QString& appID);
    Q_INVOKABLE static QVariant GetAppID();
    Q_INVOKABLE static QVariant GetUserID();
    Q_INVOKABLE static QVariant GetAdid();
    Q_INVOKABLE static void SetAdidWithAdid(const QString& adid);
    Q_INVOKABLE static QVariant GetInstallTime();
    Q_INVOKABLE static double CurrentTimestamp();

    // Remote configuration

    Q_INVOKABLE static QString GetRemoteConfigWithKeyDefaultValue(const QString& key,
                                                                  const QString& defaultValue);

    // Events. An undefined or null custom value is absent; numbers and booleans are converted to text. Times
    // that are negative, not numbers or beyond 64 bits are refused with a log line; fractions are truncated.

    Q_INVOKABLE static void EventWithName(const QString& name);
    Q_INVOKABLE static void EventWithNameCustomValue(const QString& name, const QVariant& customValue);
    Q_INVOKABLE static void EventWithNameStartTimeEndtimeCustomValue(const QString& name, double startTime,
                                                                     double endtime,
                                                                     const QVariant& customValue);

    // Predefined events

    Q_INVOKABLE static void OnboardingStart();
    Q_INVOKABLE static void OnboardingStepWithStep(const QString& step);
    Q_INVOKABLE static void OnboardingFinish();
    Q_INVOKABLE static void LoginSuccessWithSource(const QString& source);
    Q_INVOKABLE static void InterstitialAdShown();
    Q_INVOKABLE static void InterstitialAdClosed();
    Q_INVOKABLE static void RewardedAdShown();
    Q_INVOKABLE static void RewardedAdClosed();
    Q_INVOKABLE static void RewardedAdClaimed();
    Q_INVOKABLE static void BannerAdShown();
    Q_INVOKABLE static void NotificationPermissionGranted();
    Q_INVOKABLE static void NotificationPermissionDenied();
    Q_INVOKABLE static void LocationPermissionGranted();
    Q_INVOKABLE static void LocationPermissionDenied();
    Q_INVOKABLE static void ATTPromptShown();
    Q_INVOKABLE static void ATTPermissionGranted();
    Q_INVOKABLE static void ATTPermissionDenied();
    Q_INVOKABLE static void PaywallShownWithPaywall(const QString& paywall);
    Q_INVOKABLE static void PaywallClosedWithPaywall(const QString& paywall);
    Q_INVOKABLE static void PaywallAttemptedWithPaywall(const QString& paywall);
    Q_INVOKABLE static void PaywallPurchasedWithPaywall(const QString& paywall);
    Q_INVOKABLE static void PaywallCancelledWithPaywall(const QString& paywall);
    Q_INVOKABLE static void TabClickedWithTab(const QString& tab);
    Q_INVOKABLE static void FeatureClickedWithFeature(const QString& feature);
    Q_INVOKABLE static void DailyStreakShown();
    Q_INVOKABLE static void DailyStreakClaimed();
    Q_INVOKABLE static void DailyStreakClosed();

    // Screens, shown in the most recently attached or activated window.

    Q_INVOKABLE static void ShowPaywallWithJsonString(const QString& jsonString);
    Q_INVOKABLE static void ClosePaywall();
    Q_INVOKABLE static void ShowPaidProductLoadingScreen();
    Q_INVOKABLE static void ClosePaidProductLoadingScreen();
    Q_INVOKABLE static void ShowOnboardingWithJsonString(const QString& jsonString);
    Q_INVOKABLE static void CloseOnboarding();
    Q_INVOKABLE static void ShowEventList();
    Q_INVOKABLE static void CloseEventList();

  Q_SIGNALS:
    void debugChanged();

    // The notifications of `VornaCoreSDK`, on the main thread.

    void remoteConfigsReady(bool remoteConfigFetched);
    void paidProductClicked(const QString& identifier);
    void onboardingScreensFinished(const QString& identifier);
    void paywallScreenClosed(bool success);
    void onboardingScreenClosed(bool success);
    void paywallScreenFinished(const QString& identifier);
    void restorePurchaseClicked(bool success);
    void eventListUpdated();

  protected:
    bool event(QEvent* event) override;

  private:
    /// Calls the handler on this object's thread; synchronously if the notification is posted on it.
    void observe(std::string_view name, std::function<void(const Notification&)> handler);
    void forward(std::string_view name, std::string_view key, void (VornaSingleton::*signal)(bool));
    void forward(std::string_view name, std::string_view key, void (VornaSingleton::*signal)(const QString&));

    /// Calls from other threads, one for each event of type QEvent::User. Qt's events could hold them too,
    /// but the thread sanitizer does not see Qt's locks and would report a race for each.
    Mutex mutex_;
    std::deque<std::function<void()>> posted_;
    /// Destroyed first, as the observers use the members above.
    std::vector<NotificationCenter::Observation> observations_;
};

}  // namespace vorna::qml
