// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/PaywallScreenViewController.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/text/Graphemes.h>
#include <vorna/ui/common/Conversions.h>
#include <vorna/ui/common/Links.h>
#include <vorna/ui/common/ViewLoader.h>

#include <cstddef>
#include <string>

namespace vorna::ui {

namespace {

/// What fits on a line of the narrowest phones.
constexpr std::size_t mostCharacters = 37;

QString shortened(const std::string& line) {
    if (text::characterCount(line) <= mostCharacters) {
        return toQString(line);
    }
    return toQString(text::firstCharacters(line, mostCharacters)) + QStringLiteral("...");
}

}  // namespace

PaywallScreenViewController::PaywallScreenViewController(const PaywallParameters& paywall)
    : paywall_(paywall),
      productRow_(paywall.paidProducts, paywall.selectedPaidProduct) {}

QStringList PaywallScreenViewController::details() const {
    QStringList lines;
    for (const std::string& line : paywall_.details) {
        lines.append(shortened(line));
    }
    return lines;
}

QString PaywallScreenViewController::headingText() const {
    return toQString(paywall_.heading);
}

QString PaywallScreenViewController::buttonTitle() const {
    return toQString(paywall_.buttonTitle);
}

QString PaywallScreenViewController::footNote() const {
    return toQString(paywall_.footNote);
}

QColor PaywallScreenViewController::backgroundColor() const {
    return colorOf(paywall_.backgroundColor);
}

QColor PaywallScreenViewController::actionButtonColor1() const {
    return colorOf(paywall_.actionButtonColor1);
}

QColor PaywallScreenViewController::actionButtonColor2() const {
    return colorOf(paywall_.actionButtonColor2);
}

QColor PaywallScreenViewController::headingColor() const {
    return colorOf(paywall_.headingColor);
}

QColor PaywallScreenViewController::buttonTitleColor() const {
    return colorOf(paywall_.buttonTitleColor);
}

QColor PaywallScreenViewController::termsOfUseColor() const {
    return colorOf(paywall_.termsOfUseColor);
}

QColor PaywallScreenViewController::footNoteColor() const {
    return colorOf(paywall_.footNoteColor);
}

QColor PaywallScreenViewController::restoreButtonColor() const {
    return colorOf(paywall_.restoreButtonColor);
}

QColor PaywallScreenViewController::privacyPolicyColor() const {
    return colorOf(paywall_.privacyPolicyColor);
}

QColor PaywallScreenViewController::detailsColor() const {
    return colorOf(paywall_.detailsColor);
}

QColor PaywallScreenViewController::exitButtonColor() const {
    return colorOf(paywall_.exitButtonColor);
}

QUrl PaywallScreenViewController::viewSource() const {
    return viewFile("paywall/PaywallScreenView.qml");
}

void PaywallScreenViewController::viewDidLoad() {
    startMedia(paywall_.media);
    showExitButtonAfter(paywall_.exitButtonDelay);
}

void PaywallScreenViewController::buttonTapped() {
    if (const PaidProduct* const product = productRow_.selectedProduct()) {
        NotificationCenter::defaultCenter().post(VornaCoreSDK::PaywallScreenFinished,
                                                 {{std::string("identifier"), product->identifier}});
    }
}

void PaywallScreenViewController::exitTapped() {
    NotificationCenter::defaultCenter().post(VornaCoreSDK::PaywallScreenClosed,
                                             {{std::string("success"), true}});
}

void PaywallScreenViewController::restorePurchaseTapped() {
    NotificationCenter::defaultCenter().post(VornaCoreSDK::RestorePurchaseClicked,
                                             {{std::string("success"), true}});
}

void PaywallScreenViewController::linkButtonTapped(const QString& title) {
    openLink(title, paywall_.termsOfUse, paywall_.privacyPolicy);
}

}  // namespace vorna::ui
