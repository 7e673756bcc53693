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

/// As many characters as fit on one line of the narrowest phones.
constexpr std::size_t maxDetailCharacters = 37;

QString shortened(const std::string& line) {
    if (text::characterCount(line) <= maxDetailCharacters) {
        return toQString(line);
    }
    return toQString(text::firstCharacters(line, maxDetailCharacters)) + QStringLiteral("...");
}

PaywallLook lookOf(const PaywallParameters& paywall) {
    PaywallLook look;
    look.headingText = toQString(paywall.heading);
    for (const std::string& line : paywall.details) {
        look.details.append(shortened(line));
    }
    look.buttonTitle = toQString(paywall.buttonTitle);
    look.footNote = toQString(paywall.footNote);
    look.backgroundColor = colorOf(paywall.backgroundColor);
    look.actionButtonColor1 = colorOf(paywall.actionButtonColor1);
    look.actionButtonColor2 = colorOf(paywall.actionButtonColor2);
    look.headingColor = colorOf(paywall.headingColor);
    look.buttonTitleColor = colorOf(paywall.buttonTitleColor);
    look.termsOfUseColor = colorOf(paywall.termsOfUseColor);
    look.footNoteColor = colorOf(paywall.footNoteColor);
    look.restoreButtonColor = colorOf(paywall.restoreButtonColor);
    look.privacyPolicyColor = colorOf(paywall.privacyPolicyColor);
    look.detailsColor = colorOf(paywall.detailsColor);
    look.exitButtonColor = colorOf(paywall.exitButtonColor);
    return look;
}

}  // namespace

PaywallScreenViewController::PaywallScreenViewController(const PaywallParameters& paywall)
    : paywall_(paywall),
      look_(lookOf(paywall)),
      productRow_(paywall.paidProducts, paywall.selectedPaidProduct) {}

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
