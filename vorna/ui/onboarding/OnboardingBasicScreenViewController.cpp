// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/onboarding/OnboardingBasicScreenViewController.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/ui/common/Conversions.h>
#include <vorna/ui/common/ViewLoader.h>

#include <string>
#include <utility>

namespace vorna::ui {

OnboardingBasicScreenViewController::OnboardingBasicScreenViewController(
    std::shared_ptr<const OnboardingStepsParameters> step, StepPosition position,
    std::function<void()> buttonAction)
    : step_(std::move(step)),
      position_(position),
      buttonAction_(std::move(buttonAction)) {}

QString OnboardingBasicScreenViewController::titleText() const {
    return toQString(step_->title);
}

QString OnboardingBasicScreenViewController::headingText() const {
    return toQString(step_->heading);
}

QString OnboardingBasicScreenViewController::buttonTitle() const {
    return toQString(step_->buttonTitle);
}

QColor OnboardingBasicScreenViewController::backgroundColor() const {
    return colorOf(step_->backgroundColor);
}

QColor OnboardingBasicScreenViewController::headingColor() const {
    return colorOf(step_->headingColor);
}

QColor OnboardingBasicScreenViewController::buttonTitleColor() const {
    return colorOf(step_->buttonTitleColor);
}

QColor OnboardingBasicScreenViewController::actionButtonColor1() const {
    return colorOf(step_->actionButtonColor1);
}

QColor OnboardingBasicScreenViewController::actionButtonColor2() const {
    return colorOf(step_->actionButtonColor2);
}

QColor OnboardingBasicScreenViewController::exitButtonColor() const {
    return colorOf(step_->exitButtonColor);
}

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
