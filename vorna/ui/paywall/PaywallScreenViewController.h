// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The screen of a paywall. It sells nothing: it tells the host what the user chose, and waits to be closed.

#include <vorna/documents/PaywallParameters.h>
#include <vorna/ui/common/MediaScreenViewController.h>
#include <vorna/ui/paywall/ProductRow.h>

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>

namespace vorna::ui {

class PaywallScreenViewController final : public vorna::ui::MediaScreenViewController {
    Q_OBJECT
    Q_PROPERTY(QString headingText READ headingText CONSTANT)
    Q_PROPERTY(QStringList details READ details CONSTANT)
    Q_PROPERTY(QString buttonTitle READ buttonTitle CONSTANT)
    Q_PROPERTY(QString footNote READ footNote CONSTANT)
    Q_PROPERTY(vorna::ui::ProductRow* productRow READ productRow CONSTANT)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor CONSTANT)
    Q_PROPERTY(QColor actionButtonColor1 READ actionButtonColor1 CONSTANT)
    Q_PROPERTY(QColor actionButtonColor2 READ actionButtonColor2 CONSTANT)
    Q_PROPERTY(QColor headingColor READ headingColor CONSTANT)
    Q_PROPERTY(QColor buttonTitleColor READ buttonTitleColor CONSTANT)
    Q_PROPERTY(QColor termsOfUseColor READ termsOfUseColor CONSTANT)
    Q_PROPERTY(QColor footNoteColor READ footNoteColor CONSTANT)
    Q_PROPERTY(QColor restoreButtonColor READ restoreButtonColor CONSTANT)
    Q_PROPERTY(QColor privacyPolicyColor READ privacyPolicyColor CONSTANT)
    Q_PROPERTY(QColor detailsColor READ detailsColor CONSTANT)
    Q_PROPERTY(QColor exitButtonColor READ exitButtonColor CONSTANT)
    QML_ELEMENT
    QML_UNCREATABLE("made by the paywall flow")

  public:
    explicit PaywallScreenViewController(const PaywallParameters& paywall);

    QString headingText() const;
    /// A line each; one of 38 characters or more is cut to 37 and "...".
    QStringList details() const;
    QString buttonTitle() const;
    QString footNote() const;

    ProductRow* productRow() { return &productRow_; }

    QColor backgroundColor() const;
    QColor actionButtonColor1() const;
    QColor actionButtonColor2() const;
    QColor headingColor() const;
    QColor buttonTitleColor() const;
    QColor termsOfUseColor() const;
    QColor footNoteColor() const;
    QColor restoreButtonColor() const;
    QColor privacyPolicyColor() const;
    QColor detailsColor() const;
    QColor exitButtonColor() const;

    /// The purchase button: does nothing while no product is selected.
    Q_INVOKABLE void buttonTapped();
    Q_INVOKABLE void exitTapped();
    Q_INVOKABLE void restorePurchaseTapped();
    /// Which link it was is told by its title.
    Q_INVOKABLE void linkButtonTapped(const QString& title);

  protected:
    QUrl viewSource() const override;
    void viewDidLoad() override;

  private:
    const PaywallParameters paywall_;
    ProductRow productRow_;
};

}  // namespace vorna::ui
