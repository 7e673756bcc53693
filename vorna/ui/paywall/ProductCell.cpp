// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/ProductCell.h>

#include <vorna/ui/common/Conversions.h>

#include <QtQml/QQmlEngine>

#include <string>

namespace vorna::ui {

namespace {

/// Background of tags and badges that have no colour.
constexpr std::string_view defaultAccent = "#0A84FF";

bool hasText(const std::optional<std::string>& text) {
    return text && !text->empty();
}

void setIfPresent(QColor& color, const std::optional<std::string>& hex) {
    if (hex) {
        color = colorOf(*hex);
    }
}

QColor accent(const std::optional<std::string>& hex) {
    return colorOf(hex ? std::string_view(*hex) : defaultAccent);
}

}  // namespace

ProductCell::ProductCell() {
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
}

void ProductCell::configure(const PaidProduct& product, bool isSelected) {
    ProductLook& look = look_;
    isSelected_ = isSelected;
    look.titleText = toQString(product.title);
    look.titleColor = colorOf(product.titleColor);
    look.priceText = toQString(product.price);
    look.priceColor = colorOf(product.priceColor);

    look.isDescriptionShown = hasText(product.descriptionText);
    if (look.isDescriptionShown) {
        look.descriptionText = toQString(*product.descriptionText);
        setIfPresent(look.descriptionColor, product.descriptionTextColor);
        look.spacingAfterTitle = 2;
        look.spacingAfterDescription = 20;
    } else {
        look.spacingAfterTitle = 30;
    }

    look.isTagShown = hasText(product.tagText);
    if (look.isTagShown) {
        look.tagText = toQString(*product.tagText);
        look.tagBackground = accent(isSelected ? product.tagSelectedColor : product.tagUnselectedColor);
        setIfPresent(look.tagTextColor, product.tagTextColor);
    }

    look.isBadgeShown = hasText(product.badgeText);
    if (look.isBadgeShown) {
        look.badgeText = toQString(*product.badgeText);
        look.badgeBackground = accent(isSelected ? product.badgeSelectedColor : product.badgeUnselectedColor);
        setIfPresent(look.badgeTextColor, product.badgeTextColor);
    }

    if (isSelected) {
        look.borderColor = colorOf(product.selectedBorderColor);
        look.borderWidth = 2;
        look.background = colorOf(product.selectedBackgroundColor);
        look.shadowColor = look.borderColor;
        look.shadowOpacity = 0.7;
        look.shadowRadius = 8;
        look.shadowOffset = 6;
    } else {
        look.borderColor = colorOf(product.unselectedBorderColor);
        look.borderWidth = look.isBadgeShown ? 3 : 1;
        look.background = colorOf(product.unselectedBackgroundColor);
        // The shadow keeps the colour from when the cell was last selected.
        look.shadowOpacity = 0.2;
        look.shadowRadius = 4;
        look.shadowOffset = 3;
    }
    Q_EMIT configured();
}

}  // namespace vorna::ui
