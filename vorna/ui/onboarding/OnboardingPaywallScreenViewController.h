// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen of an onboarding step of type "paywall". It sells nothing itself: it passes on the identifier
/// of the selected product, and notifies the host of taps on products and on "Restore Purchase".

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/ui/common/MediaScreenViewController.h>
#include <vorna/ui/onboarding/StepLook.h>
#include <vorna/ui/onboarding/StepPosition.h>
#include <vorna/ui/paywall/ProductRow.h>

#include <QtCore/QString>
#include <QtQmlIntegration/qqmlintegration.h>

#include <functional>
#include <memory>
#include <string>

namespace vorna::ui {

class OnboardingPaywallScreenViewController final : public vorna::ui::MediaScreenViewController {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::StepLook look READ look CONSTANT)
    Q_PROPERTY(vorna::ui::ProductRow* productRow READ productRow CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("created by the onboarding flow")

  public:
    /// Calls `buttonAction` on each tap of the button, with the identifier of the selected product; empty if
    /// none is selected.
    OnboardingPaywallScreenViewController(std::shared_ptr<const OnboardingStepsParameters> step,
                                          StepPosition position,
                                          std::function<void(std::string)> buttonAction);

    const StepLook& look() const { return look_; }

    ProductRow* productRow() { return &productRow_; }

    Q_INVOKABLE void actionButtonTapped();
    Q_INVOKABLE void exitButtonTapped();
    Q_INVOKABLE void restorePurchaseTapped();
    /// The title identifies the link.
    Q_INVOKABLE void linkButtonTapped(const QString& title);

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;

  private:
    const std::shared_ptr<const OnboardingStepsParameters> step_;
    const StepPosition position_;
    const StepLook look_;
    const std::function<void(std::string)> buttonAction_;
    ProductRow productRow_;
};

}  // namespace vorna::ui
