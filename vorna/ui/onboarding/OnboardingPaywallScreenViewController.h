// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen of an onboarding step of type "paywall". It sells nothing: it hands the identifier of the
/// chosen product on, and tells the host of taps on products and "Restore Purchase".

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/ui/common/MediaScreenViewController.h>
#include <vorna/ui/onboarding/StepPosition.h>
#include <vorna/ui/paywall/ProductRow.h>

#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>

#include <functional>
#include <memory>
#include <string>

namespace vorna::ui {

class OnboardingPaywallScreenViewController final : public vorna::ui::MediaScreenViewController {
    Q_OBJECT
    Q_PROPERTY(QString titleText READ titleText CONSTANT)
    Q_PROPERTY(QString headingText READ headingText CONSTANT)
    Q_PROPERTY(QString buttonTitle READ buttonTitle CONSTANT)
    Q_PROPERTY(QString footNote READ footNote CONSTANT)
    Q_PROPERTY(vorna::ui::ProductRow* productRow READ productRow CONSTANT)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor CONSTANT)
    Q_PROPERTY(QColor headingColor READ headingColor CONSTANT)
    Q_PROPERTY(QColor buttonTitleColor READ buttonTitleColor CONSTANT)
    Q_PROPERTY(QColor actionButtonColor1 READ actionButtonColor1 CONSTANT)
    Q_PROPERTY(QColor actionButtonColor2 READ actionButtonColor2 CONSTANT)
    Q_PROPERTY(QColor footNoteColor READ footNoteColor CONSTANT)
    Q_PROPERTY(QColor termsOfUseColor READ termsOfUseColor CONSTANT)
    Q_PROPERTY(QColor restoreButtonColor READ restoreButtonColor CONSTANT)
    Q_PROPERTY(QColor privacyPolicyColor READ privacyPolicyColor CONSTANT)
    Q_PROPERTY(QColor exitButtonColor READ exitButtonColor CONSTANT)
    Q_PROPERTY(int stepIndex READ stepIndex CONSTANT)
    Q_PROPERTY(int stepCount READ stepCount CONSTANT)
    Q_PROPERTY(bool showArrow READ showArrow CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("made by the onboarding flow")

  public:
    /// The action is called each time the button is tapped, with the identifier of the selected product or
    /// empty text. Detail lines and the title's own colour are not shown, as on a basic step.
    OnboardingPaywallScreenViewController(std::shared_ptr<const OnboardingStepsParameters> step,
                                          StepPosition position,
                                          std::function<void(std::string)> buttonAction);

    QString titleText() const;
    QString headingText() const;
    QString buttonTitle() const;
    QString footNote() const;

    ProductRow* productRow() { return &productRow_; }

    QColor backgroundColor() const;
    QColor headingColor() const;
    QColor buttonTitleColor() const;
    QColor actionButtonColor1() const;
    QColor actionButtonColor2() const;
    QColor footNoteColor() const;
    QColor termsOfUseColor() const;
    QColor restoreButtonColor() const;
    QColor privacyPolicyColor() const;
    QColor exitButtonColor() const;

    int stepIndex() const { return position_.stepIndex; }

    int stepCount() const { return position_.stepCount; }

    bool showArrow() const { return position_.showArrow; }

    Q_INVOKABLE void actionButtonTapped();
    Q_INVOKABLE void exitButtonTapped();
    Q_INVOKABLE void restorePurchaseTapped();
    /// Which link it was is told by its title.
    Q_INVOKABLE void linkButtonTapped(const QString& title);

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;

  private:
    const std::shared_ptr<const OnboardingStepsParameters> step_;
    const StepPosition position_;
    const std::function<void(std::string)> buttonAction_;
    ProductRow productRow_;
};

}  // namespace vorna::ui
