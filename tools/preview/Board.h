// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The state of the findings window.

#include <tools/preview/FindingsModel.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtQmlIntegration/qqmlintegration.h>

namespace vorna::preview {

/// Holds the contents of the second window.
class Board : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString document READ document CONSTANT)
    Q_PROPERTY(QString device READ device NOTIFY deviceChanged)
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
    /// The notifications of the library, newest first.
    Q_PROPERTY(QStringList posted READ posted NOTIFY postedChanged)
    Q_PROPERTY(vorna::preview::FindingsModel* findings READ findings CONSTANT)
    Q_PROPERTY(int findingsCount READ findingsCount NOTIFY findingsChanged)
    /// The appearance of the desktop and of the host's page.
    Q_PROPERTY(bool isDark READ isDark NOTIFY isDarkChanged)
    QML_ELEMENT
    QML_UNCREATABLE("created by the program")

  public:
    Board(QString document, bool isDark);

    [[nodiscard]] QString document() const { return document_; }

    [[nodiscard]] QString device() const { return device_; }

    [[nodiscard]] QString status() const { return status_; }

    [[nodiscard]] QStringList posted() const { return posted_; }

    [[nodiscard]] FindingsModel* findings() { return &findings_; }

    [[nodiscard]] int findingsCount() const { return findings_.rowCount(); }

    [[nodiscard]] bool isDark() const { return isDark_; }

    void setDevice(const QString& device);
    void setStatus(const QString& status);
    void setFindings(std::vector<lint::Finding> findings);
    void setDark(bool isDark);
    void addPosted(const QString& notification);

  Q_SIGNALS:
    void deviceChanged();
    void statusChanged();
    void postedChanged();
    void findingsChanged();
    void isDarkChanged();

  private:
    const QString document_;
    QString device_;
    QString status_;
    QStringList posted_;
    FindingsModel findings_;
    bool isDark_;
};

}  // namespace vorna::preview
