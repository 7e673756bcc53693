// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/onboarding/OnboardingBasicScreenViewController.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/common/ViewLoader.h>

#include <string>
#include <utility>

namespace vorna::ui {

OnboardingBasicScreenViewController::OnboardingBasicScreenViewController(
    std::shared_ptr<const OnboardingStepsParameters> step, StepPosition position,
    std::function<void()> buttonAction)
    : step_(std::move(step)),
      position_(position),
      look_(lookOf(*step_, position)),
      buttonAction_(std::move(buttonAction)) {}

QUrl OnboardingBasicScreenViewController::viewSource() const {
    return viewFile("onboarding/OnboardingBasicScreenView.qml");
}

void OnboardingBasicScreenViewController::viewDidLoad() {
    startMedia(step_->media);
    if (position_.showExitButton) {
        showExitButtonAfter(step_->exitButtonDelay);
    }
}

void OnboardingBasicScreenViewController::actionButtonTapped() {
    buttonAction_();
}

void OnboardingBasicScreenViewController::exitButtonTapped() {
    NotificationCenter::defaultCenter().post(VornaCoreSDK::OnboardingScreenClosed,
                                             {{std::string("success"), true}});
}

}  // namespace vorna::ui
