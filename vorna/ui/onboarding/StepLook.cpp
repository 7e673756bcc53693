// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/onboarding/StepLook.h>

#include <vorna/ui/common/Conversions.h>

namespace vorna::ui {

StepLook lookOf(const OnboardingStepsParameters& step, StepPosition position) {
    StepLook look;
    look.titleText = toQString(step.title);
    look.headingText = toQString(step.heading);
    look.buttonTitle = toQString(step.buttonTitle);
    look.backgroundColor = colorOf(step.backgroundColor);
    look.headingColor = colorOf(step.headingColor);
    look.buttonTitleColor = colorOf(step.buttonTitleColor);
    look.actionButtonColor1 = colorOf(step.actionButtonColor1);
    look.actionButtonColor2 = colorOf(step.actionButtonColor2);
    look.exitButtonColor = colorOf(step.exitButtonColor);
    look.stepIndex = position.stepIndex;
    look.stepCount = position.stepCount;
    look.showsArrow = position.showArrow;
    look.footNote = toQString(step.footNote);
    look.footNoteColor = colorOf(step.footNoteColor);
    look.termsOfUseColor = colorOf(step.termsOfUseColor);
    look.restoreButtonColor = colorOf(step.restoreButtonColor);
    look.privacyPolicyColor = colorOf(step.privacyPolicyColor);
    return look;
}

}  // namespace vorna::ui
