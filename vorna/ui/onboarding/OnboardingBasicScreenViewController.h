// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen of an onboarding step of type "basic".

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/ui/common/MediaScreenViewController.h>
#include <vorna/ui/onboarding/StepPosition.h>

#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>

#include <functional>
#include <memory>

namespace vorna::ui {

class OnboardingBasicScreenViewController final : public vorna::ui::MediaScreenViewController {
    Q_OBJECT
    Q_PROPERTY(QString titleText READ titleText CONSTANT)
    Q_PROPERTY(QString headingText READ headingText CONSTANT)
    Q_PROPERTY(QString buttonTitle READ buttonTitle CONSTANT)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor CONSTANT)
    Q_PROPERTY(QColor headingColor READ headingColor CONSTANT)
    Q_PROPERTY(QColor buttonTitleColor READ buttonTitleColor CONSTANT)
    Q_PROPERTY(QColor actionButtonColor1 READ actionButtonColor1 CONSTANT)
    Q_PROPERTY(QColor actionButtonColor2 READ actionButtonColor2 CONSTANT)
    Q_PROPERTY(QColor exitButtonColor READ exitButtonColor CONSTANT)
    Q_PROPERTY(int stepIndex READ stepIndex CONSTANT)
    Q_PROPERTY(int stepCount READ stepCount CONSTANT)
    Q_PROPERTY(bool showArrow READ showArrow CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("made by the onboarding flow")

  public:
    /// The action is called each time the button is tapped. A basic step shows neither detail lines nor its
    /// own title colour: its title has the colour of its heading.
    OnboardingBasicScreenViewController(std::shared_ptr<const OnboardingStepsParameters> step,
                                        StepPosition position, std::function<void()> buttonAction);

    QString titleText() const;
    QString headingText() const;
    QString buttonTitle() const;
    QColor backgroundColor() const;
    QColor headingColor() const;
    QColor buttonTitleColor() const;
    QColor actionButtonColor1() const;
    QColor actionButtonColor2() const;
    QColor exitButtonColor() const;

    int stepIndex() const { return position_.stepIndex; }

    int stepCount() const { return position_.stepCount; }

    bool showExitButton() const { return position_.showExitButton; }

    bool showArrow() const { return position_.showArrow; }

    Q_INVOKABLE void actionButtonTapped();
    Q_INVOKABLE void exitButtonTapped();

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;

  private:
    const std::shared_ptr<const OnboardingStepsParameters> step_;
    const StepPosition position_;
    const std::function<void()> buttonAction_;
};

}  // namespace vorna::ui
