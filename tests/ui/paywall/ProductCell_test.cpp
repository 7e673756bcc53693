// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/ProductCell.h>

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace vorna::ui {
namespace {

/// A product made in code, without any optional field.
PaidProduct bareProduct() {
    return {"Title",      "Price",      "id",         "#010203",    "#040506",    "#070809",    "#0a0b0c",
            std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt,
            std::nullopt, "#0d0e0f",    "#101112",    std::nullopt, std::nullopt};
}

PaidProduct fromDocument(const std::string& more) {
    return PaidProduct::decode(
               R"({"title":"Title","price":"Price","identifier":"id","selectedBackgroundColor":"#010203",)"
               R"("unselectedBackgroundColor":"#040506","selectedBorderColor":"#070809",)"
               R"("unselectedBorderColor":"#0a0b0c","titleColor":"#0d0e0f","priceColor":"#101112")" +
               more + "}")
        .value();
}

/// The look of a cell with only title and price.
ProductLook bareLook(bool isSelected) {
    ProductLook look;
    look.titleText = "Title";
    look.titleColor = QColor(0x0d, 0x0e, 0x0f);
    look.priceText = "Price";
    look.priceColor = QColor(0x10, 0x11, 0x12);
    look.isDescriptionShown = false;
    look.descriptionText = "";
    look.descriptionColor = QColor(170, 170, 170);
    look.spacingAfterTitle = 30;
    look.spacingAfterDescription = 5;
    look.isTagShown = false;
    look.tagTextColor = Qt::white;
    look.tagBackground = QColor(0, 0, 255);
    look.isBadgeShown = false;
    look.badgeTextColor = Qt::white;
    look.badgeBackground = QColor(0, 0, 255);
    look.borderColor = isSelected ? QColor(7, 8, 9) : QColor(0x0a, 0x0b, 0x0c);
    look.borderWidth = isSelected ? 2 : 1;
    look.background = isSelected ? QColor(1, 2, 3) : QColor(4, 5, 6);
    look.shadowColor = isSelected ? QColor(7, 8, 9) : QColor(Qt::black);
    look.shadowOpacity = isSelected ? 0.7 : 0.2;
    look.shadowRadius = isSelected ? 8 : 4;
    look.shadowOffset = isSelected ? 6 : 3;
    return look;
}

struct Case {
    const char* name;
    std::function<PaidProduct()> product;
    bool isSelected;
    /// The differences from a cell with only title and price.
    std::function<void(ProductLook&)> change;
};

void PrintTo(const Case& testCase, std::ostream* stream) {
    *stream << testCase.name;
}

std::function<PaidProduct()> madeWith(std::function<void(PaidProduct&)> change) {
    return [change = std::move(change)] {
        PaidProduct product = bareProduct();
        change(product);
        return product;
    };
}

std::function<PaidProduct()> decodedWith(std::string more) {
    return [more = std::move(more)] { return fromDocument(more); };
}

void nothing(ProductLook&) {}

const QColor blue(0x0a, 0x84, 0xff);

class ConfiguredCell : public testing::TestWithParam<Case> {};

TEST_P(ConfiguredCell, HasTheExpectedLook) {
    const Case& testCase = GetParam();
    ProductCell cell;
    cell.configure(testCase.product(), testCase.isSelected);
    ProductLook expected = bareLook(testCase.isSelected);
    testCase.change(expected);
    const ProductLook look = cell.look();
    EXPECT_EQ(cell.isSelected(), testCase.isSelected);
    EXPECT_EQ(look.titleText, expected.titleText);
    EXPECT_EQ(look.titleColor.rgba(), expected.titleColor.rgba());
    EXPECT_EQ(look.priceText, expected.priceText);
    EXPECT_EQ(look.priceColor.rgba(), expected.priceColor.rgba());
    EXPECT_EQ(look.isDescriptionShown, expected.isDescriptionShown);
    EXPECT_EQ(look.descriptionText, expected.descriptionText);
    EXPECT_EQ(look.descriptionColor.rgba(), expected.descriptionColor.rgba());
    EXPECT_EQ(look.spacingAfterTitle, expected.spacingAfterTitle);
    EXPECT_EQ(look.spacingAfterDescription, expected.spacingAfterDescription);
    EXPECT_EQ(look.isTagShown, expected.isTagShown);
    EXPECT_EQ(look.tagText, expected.tagText);
    EXPECT_EQ(look.tagTextColor.rgba(), expected.tagTextColor.rgba());
    EXPECT_EQ(look.tagBackground.rgba(), expected.tagBackground.rgba());
    EXPECT_EQ(look.isBadgeShown, expected.isBadgeShown);
    EXPECT_EQ(look.badgeText, expected.badgeText);
    EXPECT_EQ(look.badgeTextColor.rgba(), expected.badgeTextColor.rgba());
    EXPECT_EQ(look.badgeBackground.rgba(), expected.badgeBackground.rgba());
    EXPECT_EQ(look.borderColor.rgba(), expected.borderColor.rgba());
    EXPECT_EQ(look.borderWidth, expected.borderWidth);
    EXPECT_EQ(look.background.rgba(), expected.background.rgba());
    EXPECT_EQ(look.shadowColor.rgba(), expected.shadowColor.rgba());
    EXPECT_EQ(look.shadowOpacity, expected.shadowOpacity);
    EXPECT_EQ(look.shadowRadius, expected.shadowRadius);
    EXPECT_EQ(look.shadowOffset, expected.shadowOffset);
}

INSTANTIATE_TEST_SUITE_P(
    Products, ConfiguredCell,
    testing::Values(
        Case{"NothingOptionalUnselected", bareProduct, false, nothing},
        Case{"NothingOptionalSelected", bareProduct, true, nothing},
        Case{"NothingOptionalInTheDocument", decodedWith(""), false, nothing},
        Case{"EmptyTextsInTheDocument", decodedWith(R"(,"tagText":"","badgeText":"","descriptionText":"")"),
             false, nothing},
        Case{"EmptyTextsInCode", madeWith([](PaidProduct& product) {
                 product.tagText = "";
                 product.badgeText = "";
                 product.descriptionText = "";
                 product.tagUnselectedColor = "#123456";
                 product.badgeUnselectedColor = "#123456";
                 product.descriptionTextColor = "#123456";
                 product.tagTextColor = "#123456";
                 product.badgeTextColor = "#123456";
             }),
             false, nothing},
        Case{"DescriptionWithItsColour",
             decodedWith(R"(,"descriptionText":"Free","descriptionTextColor":"#112233")"), false,
             [](ProductLook& look) {
                 look.isDescriptionShown = true;
                 look.descriptionText = "Free";
                 look.descriptionColor = QColor(0x11, 0x22, 0x33);
                 look.spacingAfterTitle = 2;
                 look.spacingAfterDescription = 20;
             }},
        Case{"DescriptionWithoutColourInTheDocumentIsBlack", decodedWith(R"(,"descriptionText":"Free")"),
             false,
             [](ProductLook& look) {
                 look.isDescriptionShown = true;
                 look.descriptionText = "Free";
                 look.descriptionColor = Qt::black;
                 look.spacingAfterTitle = 2;
                 look.spacingAfterDescription = 20;
             }},
        Case{"DescriptionWithoutColourInCodeIsLightGrey",
             madeWith([](PaidProduct& product) { product.descriptionText = "Free"; }), true,
             [](ProductLook& look) {
                 look.isDescriptionShown = true;
                 look.descriptionText = "Free";
                 look.spacingAfterTitle = 2;
                 look.spacingAfterDescription = 20;
             }},
        Case{"TagSelected",
             decodedWith(R"(,"tagText":"Tag","tagTextColor":"#111111","tagSelectedColor":"#222222",)"
                         R"("tagUnselectedColor":"#333333")"),
             true,
             [](ProductLook& look) {
                 look.isTagShown = true;
                 look.tagText = "Tag";
                 look.tagTextColor = QColor(0x11, 0x11, 0x11);
                 look.tagBackground = QColor(0x22, 0x22, 0x22);
             }},
        Case{"TagUnselected",
             decodedWith(R"(,"tagText":"Tag","tagTextColor":"#111111","tagSelectedColor":"#222222",)"
                         R"("tagUnselectedColor":"#333333")"),
             false,
             [](ProductLook& look) {
                 look.isTagShown = true;
                 look.tagText = "Tag";
                 look.tagTextColor = QColor(0x11, 0x11, 0x11);
                 look.tagBackground = QColor(0x33, 0x33, 0x33);
             }},
        Case{"TagWithoutColoursInTheDocumentIsBlackOnBlack", decodedWith(R"(,"tagText":"Tag")"), false,
             [](ProductLook& look) {
                 look.isTagShown = true;
                 look.tagText = "Tag";
                 look.tagTextColor = Qt::black;
                 look.tagBackground = Qt::black;
             }},
        Case{"TagWithoutColoursInCodeIsWhiteOnBlue",
             madeWith([](PaidProduct& product) { product.tagText = "Tag"; }), false,
             [](ProductLook& look) {
                 look.isTagShown = true;
                 look.tagText = "Tag";
                 look.tagBackground = blue;
             }},
        Case{"TagWithTheOtherColourAloneInCodeIsBlue", madeWith([](PaidProduct& product) {
                 product.tagText = "Tag";
                 product.tagUnselectedColor = "#333333";
             }),
             true,
             [](ProductLook& look) {
                 look.isTagShown = true;
                 look.tagText = "Tag";
                 look.tagBackground = blue;
             }},
        Case{"BadgeUnselectedHasABorderOfThree",
             decodedWith(R"(,"badgeText":"Best","badgeTextColor":"#111111","badgeSelectedColor":"#222222",)"
                         R"("badgeUnselectedColor":"#333333")"),
             false,
             [](ProductLook& look) {
                 look.isBadgeShown = true;
                 look.badgeText = "Best";
                 look.badgeTextColor = QColor(0x11, 0x11, 0x11);
                 look.badgeBackground = QColor(0x33, 0x33, 0x33);
                 look.borderWidth = 3;
             }},
        Case{"BadgeSelectedHasABorderOfTwo",
             decodedWith(R"(,"badgeText":"Best","badgeTextColor":"#111111","badgeSelectedColor":"#222222",)"
                         R"("badgeUnselectedColor":"#333333")"),
             true,
             [](ProductLook& look) {
                 look.isBadgeShown = true;
                 look.badgeText = "Best";
                 look.badgeTextColor = QColor(0x11, 0x11, 0x11);
                 look.badgeBackground = QColor(0x22, 0x22, 0x22);
             }},
        Case{"BadgeWithoutColoursInTheDocumentIsBlackOnBlack", decodedWith(R"(,"badgeText":"Best")"), true,
             [](ProductLook& look) {
                 look.isBadgeShown = true;
                 look.badgeText = "Best";
                 look.badgeTextColor = Qt::black;
                 look.badgeBackground = Qt::black;
             }},
        Case{"BadgeWithoutColoursInCodeIsWhiteOnBlue",
             madeWith([](PaidProduct& product) { product.badgeText = "Best"; }), false,
             [](ProductLook& look) {
                 look.isBadgeShown = true;
                 look.badgeText = "Best";
                 look.badgeBackground = blue;
                 look.borderWidth = 3;
             }},
        Case{"UnreadableColoursAreBlack", madeWith([](PaidProduct& product) {
                 product.titleColor = "red";
                 product.priceColor = "";
                 product.unselectedBorderColor = "#12";
                 product.unselectedBackgroundColor = "#XYZXYZ";
             }),
             false,
             [](ProductLook& look) {
                 look.titleColor = Qt::black;
                 look.priceColor = Qt::black;
                 look.borderColor = Qt::black;
                 look.background = Qt::black;
             }},
        Case{"TranslucentColoursStayTranslucent",
             madeWith([](PaidProduct& product) { product.selectedBackgroundColor = "#01020380"; }), true,
             [](ProductLook& look) { look.background = QColor(1, 2, 3, 0x80); }}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(ProductCell, KeepsTheShadowColourFromItsLastSelection) {
    ProductCell cell;
    cell.configure(bareProduct(), false);
    EXPECT_EQ(cell.look().shadowColor, QColor(Qt::black));
    cell.configure(bareProduct(), true);
    EXPECT_EQ(cell.look().shadowColor.rgb(), qRgb(7, 8, 9));
    PaidProduct other = bareProduct();
    other.selectedBorderColor = "#ffffff";
    cell.configure(other, false);
    EXPECT_EQ(cell.look().shadowColor.rgb(), qRgb(7, 8, 9));
    EXPECT_EQ(cell.look().shadowOpacity, 0.2);
    cell.configure(other, true);
    EXPECT_EQ(cell.look().shadowColor.rgb(), qRgb(255, 255, 255));
}

TEST(ProductCell, KeepsTextColoursThatTheNextProductDoesNotSet) {
    ProductCell cell;
    cell.configure(fromDocument(R"(,"tagText":"a","tagTextColor":"#111111","badgeText":"b",)"
                                R"("badgeTextColor":"#222222","descriptionText":"c",)"
                                R"("descriptionTextColor":"#333333")"),
                   false);
    PaidProduct next = bareProduct();
    next.tagText = "d";
    next.badgeText = "e";
    next.descriptionText = "f";
    cell.configure(next, false);
    EXPECT_EQ(cell.look().tagTextColor.rgb(), qRgb(0x11, 0x11, 0x11));
    EXPECT_EQ(cell.look().badgeTextColor.rgb(), qRgb(0x22, 0x22, 0x22));
    EXPECT_EQ(cell.look().descriptionColor.rgb(), qRgb(0x33, 0x33, 0x33));
    EXPECT_EQ(cell.look().tagBackground.rgb(), blue.rgb());
}

TEST(ProductCell, HidesPartsThatTheNextProductDoesNotHave) {
    ProductCell cell;
    cell.configure(fromDocument(R"(,"tagText":"a","badgeText":"b","descriptionText":"c")"), false);
    EXPECT_EQ(cell.look().borderWidth, 3);
    cell.configure(bareProduct(), false);
    EXPECT_FALSE(cell.look().isTagShown);
    EXPECT_FALSE(cell.look().isBadgeShown);
    EXPECT_FALSE(cell.look().isDescriptionShown);
    EXPECT_EQ(cell.look().spacingAfterTitle, 30);
    EXPECT_EQ(cell.look().borderWidth, 1);
}

}  // namespace
}  // namespace vorna::ui
