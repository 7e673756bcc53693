// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/common/Links.h>

#include <vorna/ui/common/Conversions.h>

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

#include <optional>

namespace vorna::ui {

namespace {

std::optional<QUrl> addressIn(std::string_view text) {
    const QUrl url(toQString(text), QUrl::StrictMode);
    return url.isValid() && !url.isRelative() ? std::optional(url) : std::nullopt;
}

}  // namespace

void openLink(const QString& title, std::string_view termsOfUseURL, std::string_view privacyPolicyURL) {
    if (const auto terms = addressIn(termsOfUseURL); terms && title == QLatin1String("Terms of Use")) {
        QDesktopServices::openUrl(*terms);
    } else if (const auto policy = addressIn(privacyPolicyURL);
               policy && title == QLatin1String("Privacy Policy")) {
        QDesktopServices::openUrl(*policy);
    }
}

}  // namespace vorna::ui
