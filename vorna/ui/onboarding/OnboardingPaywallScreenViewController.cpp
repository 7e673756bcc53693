// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/onboarding/OnboardingPaywallScreenViewController.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/common/Links.h>
#include <vorna/ui/common/ViewLoader.h>

#include <utility>

namespace vorna::ui {

OnboardingPaywallScreenViewController::OnboardingPaywallScreenViewController(
    std::shared_ptr<const OnboardingStepsParameters> step, StepPosition position,
    std::function<void(std::string)> buttonAction)
    : step_(std::move(step)),
      position_(position),
      look_(lookOf(*step_, position)),
      buttonAction_(std::move(buttonAction)),
      productRow_(step_->paidProducts, step_->selectedPaidProduct) {}

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
