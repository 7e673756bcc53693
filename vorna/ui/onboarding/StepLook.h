// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Everything that the view of an onboarding step draws, apart from media and products.

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/ui/onboarding/StepPosition.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>

namespace vorna::ui {

/// Both kinds of step draw their title in `headingColor` and no detail lines.
struct StepLook {
    Q_GADGET
    Q_PROPERTY(QString titleText MEMBER titleText)
    Q_PROPERTY(QString headingText MEMBER headingText)
    Q_PROPERTY(QString buttonTitle MEMBER buttonTitle)
    Q_PROPERTY(QString footNote MEMBER footNote)
    Q_PROPERTY(QColor backgroundColor MEMBER backgroundColor)
    Q_PROPERTY(QColor headingColor MEMBER headingColor)
    Q_PROPERTY(QColor buttonTitleColor MEMBER buttonTitleColor)
    Q_PROPERTY(QColor actionButtonColor1 MEMBER actionButtonColor1)
    Q_PROPERTY(QColor actionButtonColor2 MEMBER actionButtonColor2)
    Q_PROPERTY(QColor footNoteColor MEMBER footNoteColor)
    Q_PROPERTY(QColor termsOfUseColor MEMBER termsOfUseColor)
    Q_PROPERTY(QColor restoreButtonColor MEMBER restoreButtonColor)
    Q_PROPERTY(QColor privacyPolicyColor MEMBER privacyPolicyColor)
    Q_PROPERTY(QColor exitButtonColor MEMBER exitButtonColor)
    Q_PROPERTY(int stepIndex MEMBER stepIndex)
    Q_PROPERTY(int stepCount MEMBER stepCount)
    Q_PROPERTY(bool showsArrow MEMBER showsArrow)
    QML_VALUE_TYPE(stepLook)

  public:
    QString titleText;
    QString headingText;
    QString buttonTitle;
    QColor backgroundColor;
    QColor headingColor;
    QColor buttonTitleColor;
    QColor actionButtonColor1;
    QColor actionButtonColor2;
    QColor exitButtonColor;
    /// Zero-based.
    int stepIndex = 0;
    int stepCount = 0;
    bool showsArrow = false;

    /// On paywall steps only.
    QString footNote;
    QColor footNoteColor;
    QColor termsOfUseColor;
    QColor restoreButtonColor;
    QColor privacyPolicyColor;
};

[[nodiscard]] StepLook lookOf(const OnboardingStepsParameters& step, StepPosition position);

}  // namespace vorna::ui
