// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The application's use of the library: calls the facade from its pages, observes the user's actions on the
/// library's screens, and closes them.

#include <examples/app/Documents.h>

#include <vorna/platform/NotificationCenter.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtQmlIntegration/qqmlintegration.h>

#include <vector>

namespace app {

class Host : public QObject {
    Q_OBJECT
    /// Notifications and actions, newest first.
    Q_PROPERTY(QStringList log READ log NOTIFY logChanged)
    Q_PROPERTY(QString welcomeText READ welcomeText NOTIFY configurationChanged)
    /// The configured values used by this application, one per line.
    Q_PROPERTY(QStringList configuration READ configuration NOTIFY configurationChanged)
    QML_ELEMENT
    QML_UNCREATABLE("created by main")

  public:
    explicit Host(Documents documents);

    QStringList log() const { return log_; }

    QString welcomeText() const;
    QStringList configuration() const;

    Q_INVOKABLE void recordEvent();
    Q_INVOKABLE void showOnboarding(const QString& name);
    Q_INVOKABLE void showPaywall(const QString& name);
    Q_INVOKABLE void showEventList();
    /// Shows the overlay for a while, as for a purchase.
    Q_INVOKABLE void pretendToBuy();

  Q_SIGNALS:
    void logChanged();
    void configurationChanged();

  private:
    void handle(const vorna::Notification& notification);
    void react(const vorna::Notification& notification);
    void print(const QString& line);

    const Documents documents_;
    QStringList log_;
    int recorded_ = 0;
    std::vector<vorna::NotificationCenter::Observation> observations_;
};

}  // namespace app
