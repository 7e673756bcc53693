// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/onboarding/OnboardingPaywallScreenViewController.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/common/Conversions.h>
#include <vorna/ui/common/Links.h>
#include <vorna/ui/common/ViewLoader.h>

#include <utility>

namespace vorna::ui {

OnboardingPaywallScreenViewController::OnboardingPaywallScreenViewController(
    std::shared_ptr<const OnboardingStepsParameters> step, StepPosition position,
    std::function<void(std::string)> buttonAction)
    : step_(std::move(step)),
      position_(position),
      buttonAction_(std::move(buttonAction)),
      productRow_(step_->paidProducts, step_->selectedPaidProduct) {}

QString OnboardingPaywallScreenViewController::titleText() const {
    return toQString(step_->title);
}

QString OnboardingPaywallScreenViewController::headingText() const {
    return toQString(step_->heading);
}

QString OnboardingPaywallScreenViewController::buttonTitle() const {
    return toQString(step_->buttonTitle);
}

QString OnboardingPaywallScreenViewController::footNote() const {
    return toQString(step_->footNote);
}

QColor OnboardingPaywallScreenViewController::backgroundColor() const {
    return colorOf(step_->backgroundColor);
}

QColor OnboardingPaywallScreenViewController::headingColor() const {
    return colorOf(step_->headingColor);
}

QColor OnboardingPaywallScreenViewController::buttonTitleColor() const {
    return colorOf(step_->buttonTitleColor);
}

QColor OnboardingPaywallScreenViewController::actionButtonColor1() const {
    return colorOf(step_->actionButtonColor1);
}

QColor OnboardingPaywallScreenViewController::actionButtonColor2() const {
    return colorOf(step_->actionButtonColor2);
}

QColor OnboardingPaywallScreenViewController::footNoteColor() const {
    return colorOf(step_->footNoteColor);
}

QColor OnboardingPaywallScreenViewController::termsOfUseColor() const {
    return colorOf(step_->termsOfUseColor);
}

QColor OnboardingPaywallScreenViewController::restoreButtonColor() const {
    return colorOf(step_->restoreButtonColor);
}

QColor OnboardingPaywallScreenViewController::privacyPolicyColor() const {
    return colorOf(step_->privacyPolicyColor);
}

QColor OnboardingPaywallScreenViewController::exitButtonColor() const {
    return colorOf(step_->exitButtonColor);
}

QUrl OnboardingPaywallScreenViewController::viewSource() const {
    return viewFile("onboarding/OnboardingPaywallScreenView.qml");
}

void OnboardingPaywallScreenViewController::viewDidLoad() {
    startMedia(step_->media);
    if (position_.showExitButton) {
        showExitButtonAfter(step_->exitButtonDelay);
    }
}

void OnboardingPaywallScreenViewController::actionButtonTapped() {
    const PaidProduct* const product = productRow_.selectedProduct();
    buttonAction_(product == nullptr ? std::string() : product->identifier);
}

void OnboardingPaywallScreenViewController::exitButtonTapped() {
    NotificationCenter::defaultCenter().post(VornaCoreSDK::OnboardingScreenClosed,
                                             {{std::string("success"), true}});
}

void OnboardingPaywallScreenViewController::restorePurchaseTapped() {
    NotificationCenter::defaultCenter().post(VornaCoreSDK::RestorePurchaseClicked,
                                             {{std::string("success"), true}});
}

void OnboardingPaywallScreenViewController::linkButtonTapped(const QString& title) {
    openLink(title, step_->termsOfUse, step_->privacyPolicy);
}

}  // namespace vorna::ui
