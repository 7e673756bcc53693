// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen of a paywall. It sells nothing itself: it notifies the host of the user's choices, and stays
/// until the host closes it.

#include <vorna/documents/PaywallParameters.h>
#include <vorna/ui/common/MediaScreenViewController.h>
#include <vorna/ui/paywall/ProductRow.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>

namespace vorna::ui {

/// Everything that the view of a paywall draws, apart from media and products.
struct PaywallLook {
    Q_GADGET
    Q_PROPERTY(QString headingText MEMBER headingText)
    Q_PROPERTY(QStringList details MEMBER details)
    Q_PROPERTY(QString buttonTitle MEMBER buttonTitle)
    Q_PROPERTY(QString footNote MEMBER footNote)
    Q_PROPERTY(QColor backgroundColor MEMBER backgroundColor)
    Q_PROPERTY(QColor actionButtonColor1 MEMBER actionButtonColor1)
    Q_PROPERTY(QColor actionButtonColor2 MEMBER actionButtonColor2)
    Q_PROPERTY(QColor headingColor MEMBER headingColor)
    Q_PROPERTY(QColor buttonTitleColor MEMBER buttonTitleColor)
    Q_PROPERTY(QColor termsOfUseColor MEMBER termsOfUseColor)
    Q_PROPERTY(QColor footNoteColor MEMBER footNoteColor)
    Q_PROPERTY(QColor restoreButtonColor MEMBER restoreButtonColor)
    Q_PROPERTY(QColor privacyPolicyColor MEMBER privacyPolicyColor)
    Q_PROPERTY(QColor detailsColor MEMBER detailsColor)
    Q_PROPERTY(QColor exitButtonColor MEMBER exitButtonColor)
    QML_VALUE_TYPE(paywallLook)

  public:
    QString headingText;
    /// One entry per line; a line of more than 37 characters ends in "..." after the 37th.
    QStringList details;
    QString buttonTitle;
    QString footNote;
    QColor backgroundColor;
    QColor actionButtonColor1;
    QColor actionButtonColor2;
    QColor headingColor;
    QColor buttonTitleColor;
    QColor termsOfUseColor;
    QColor footNoteColor;
    QColor restoreButtonColor;
    QColor privacyPolicyColor;
    QColor detailsColor;
    QColor exitButtonColor;
};

class PaywallScreenViewController final : public vorna::ui::MediaScreenViewController {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::PaywallLook look READ look CONSTANT)
    Q_PROPERTY(vorna::ui::ProductRow* productRow READ productRow CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("created by the paywall flow")

  public:
    explicit PaywallScreenViewController(const PaywallParameters& paywall);

    const PaywallLook& look() const { return look_; }

    ProductRow* productRow() { return &productRow_; }

    /// Notifies the host of the selected product; does nothing if none is selected.
    Q_INVOKABLE void buttonTapped();
    Q_INVOKABLE void exitTapped();
    Q_INVOKABLE void restorePurchaseTapped();
    /// The title identifies the link.
    Q_INVOKABLE void linkButtonTapped(const QString& title);

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;

  private:
    const PaywallParameters paywall_;
    const PaywallLook look_;
    ProductRow productRow_;
};

}  // namespace vorna::ui
