// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen of an onboarding step of type "basic".

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/ui/common/MediaScreenViewController.h>
#include <vorna/ui/onboarding/StepLook.h>
#include <vorna/ui/onboarding/StepPosition.h>

#include <QtQmlIntegration/qqmlintegration.h>

#include <functional>
#include <memory>

namespace vorna::ui {

class OnboardingBasicScreenViewController final : public vorna::ui::MediaScreenViewController {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::StepLook look READ look CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("created by the onboarding flow")

  public:
    /// Calls `buttonAction` on each tap of the button.
    OnboardingBasicScreenViewController(std::shared_ptr<const OnboardingStepsParameters> step,
                                        StepPosition position, std::function<void()> buttonAction);

    const StepLook& look() const { return look_; }

    Q_INVOKABLE void actionButtonTapped();
    Q_INVOKABLE void exitButtonTapped();

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;

  private:
    const std::shared_ptr<const OnboardingStepsParameters> step_;
    const StepPosition position_;
    const StepLook look_;
    const std::function<void()> buttonAction_;
};

}  // namespace vorna::ui
