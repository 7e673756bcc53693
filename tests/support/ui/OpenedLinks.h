// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Replaces the desktop's handler of web addresses: opens nothing and records the addresses.

#include <QtCore/QObject>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

#include <string>
#include <utility>
#include <vector>

namespace vorna::support {

class OpenedLinks : public QObject {
    Q_OBJECT

  public:
    OpenedLinks() {
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open");
        QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "open");
    }

    OpenedLinks(const OpenedLinks&) = delete;
    OpenedLinks& operator=(const OpenedLinks&) = delete;
    OpenedLinks(OpenedLinks&&) = delete;
    OpenedLinks& operator=(OpenedLinks&&) = delete;

    ~OpenedLinks() override {
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
    }

    /// The addresses since construction or the last call.
    std::vector<std::string> take() { return std::exchange(opened_, {}); }

    Q_INVOKABLE void open(const QUrl& url) {
        opened_.push_back(url.toString(QUrl::FullyEncoded).toStdString());
    }

  private:
    std::vector<std::string> opened_;
};

}  // namespace vorna::support
