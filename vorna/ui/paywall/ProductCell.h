// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Determines how a product looks in the product row, selected or not.

#include <vorna/documents/PaidProduct.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtQmlIntegration/qqmlintegration.h>

#include <optional>

namespace vorna::ui {

/// Everything that the view of a product draws. The initial values are those of a cell that was never
/// configured.
struct ProductLook {
    Q_GADGET
    Q_PROPERTY(QString titleText MEMBER titleText)
    Q_PROPERTY(QColor titleColor MEMBER titleColor)
    Q_PROPERTY(QString priceText MEMBER priceText)
    Q_PROPERTY(QColor priceColor MEMBER priceColor)
    Q_PROPERTY(bool isDescriptionShown MEMBER isDescriptionShown)
    Q_PROPERTY(QString descriptionText MEMBER descriptionText)
    Q_PROPERTY(QColor descriptionColor MEMBER descriptionColor)
    Q_PROPERTY(double spacingAfterTitle MEMBER spacingAfterTitle)
    Q_PROPERTY(double spacingAfterDescription MEMBER spacingAfterDescription)
    Q_PROPERTY(bool isTagShown MEMBER isTagShown)
    Q_PROPERTY(QString tagText MEMBER tagText)
    Q_PROPERTY(QColor tagTextColor MEMBER tagTextColor)
    Q_PROPERTY(QColor tagBackground MEMBER tagBackground)
    Q_PROPERTY(bool isBadgeShown MEMBER isBadgeShown)
    Q_PROPERTY(QString badgeText MEMBER badgeText)
    Q_PROPERTY(QColor badgeTextColor MEMBER badgeTextColor)
    Q_PROPERTY(QColor badgeBackground MEMBER badgeBackground)
    Q_PROPERTY(QColor borderColor MEMBER borderColor)
    Q_PROPERTY(double borderWidth MEMBER borderWidth)
    Q_PROPERTY(QColor background MEMBER background)
    Q_PROPERTY(QColor shadowColor MEMBER shadowColor)
    Q_PROPERTY(double shadowOpacity MEMBER shadowOpacity)
    Q_PROPERTY(double shadowRadius MEMBER shadowRadius)
    Q_PROPERTY(double shadowOffset MEMBER shadowOffset)
    QML_VALUE_TYPE(productLook)

  public:
    QString titleText;
    QColor titleColor = Qt::white;
    QString priceText;
    QColor priceColor = Qt::white;
    bool isDescriptionShown = false;
    QString descriptionText;
    QColor descriptionColor{170, 170, 170};
    /// In logical pixels, like all lengths here.
    double spacingAfterTitle = 5;
    double spacingAfterDescription = 5;
    bool isTagShown = false;
    QString tagText;
    QColor tagTextColor = Qt::white;
    QColor tagBackground = Qt::blue;
    bool isBadgeShown = false;
    QString badgeText;
    QColor badgeTextColor = Qt::white;
    QColor badgeBackground = Qt::blue;
    QColor borderColor = Qt::black;
    double borderWidth = 2;
    QColor background = Qt::transparent;
    QColor shadowColor = Qt::black;
    double shadowOpacity = 0;
    double shadowRadius = 3;
    /// Downwards.
    double shadowOffset = -3;

    friend bool operator==(const ProductLook&, const ProductLook&) = default;
};

/// One cell of the row. It can be configured repeatedly, and keeps values that the next product does not set.
class ProductCell : public QObject {
    Q_OBJECT
    Q_PROPERTY(vorna::ui::ProductLook look READ look NOTIFY configured)
    Q_PROPERTY(bool isSelected READ isSelected NOTIFY configured)
    QML_ELEMENT
    QML_UNCREATABLE("created by the product row")

  public:
    ProductCell();

    /// An absent colour, possible only in products made in code, means a default; an empty one is black.
    void configure(const PaidProduct& product, bool isSelected);

    ProductLook look() const { return look_; }

    bool isSelected() const { return isSelected_; }

  Q_SIGNALS:
    void configured();

  private:
    ProductLook look_;
    bool isSelected_ = false;
};

}  // namespace vorna::ui
