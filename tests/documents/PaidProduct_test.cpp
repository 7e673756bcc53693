// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/PaidProduct.h>

#include <tests/documents/support/Documents.h>

#include <gtest/gtest.h>

#include <concepts>
#include <optional>
#include <string>

namespace vorna {
namespace {

using test::filledObject;
using test::paidProductFields;
using test::sampleProduct;

static_assert(!std::default_initializable<PaidProduct>);

TEST(PaidProduct, ConstructorTakesAllValuesInTheOrderOfTheDocument) {
    const PaidProduct product = sampleProduct();
    EXPECT_EQ(product.title, "of title");
    EXPECT_EQ(product.price, "of price");
    EXPECT_EQ(product.identifier, "of identifier");
    EXPECT_EQ(product.selectedBackgroundColor, "of selectedBackgroundColor");
    EXPECT_EQ(product.unselectedBackgroundColor, "of unselectedBackgroundColor");
    EXPECT_EQ(product.selectedBorderColor, "of selectedBorderColor");
    EXPECT_EQ(product.unselectedBorderColor, "of unselectedBorderColor");
    EXPECT_EQ(product.tagText, "of tagText");
    EXPECT_EQ(product.badgeText, "of badgeText");
    EXPECT_EQ(product.badgeSelectedColor, "of badgeSelectedColor");
    EXPECT_EQ(product.badgeUnselectedColor, "of badgeUnselectedColor");
    EXPECT_EQ(product.tagSelectedColor, "of tagSelectedColor");
    EXPECT_EQ(product.tagUnselectedColor, "of tagUnselectedColor");
    EXPECT_EQ(product.descriptionText, "of descriptionText");
    EXPECT_EQ(product.badgeTextColor, "of badgeTextColor");
    EXPECT_EQ(product.titleColor, "of titleColor");
    EXPECT_EQ(product.priceColor, "of priceColor");
    EXPECT_EQ(product.tagTextColor, "of tagTextColor");
    EXPECT_EQ(product.descriptionTextColor, "of descriptionTextColor");
}

TEST(PaidProduct, IsEncodedInThatOrderAndRestored) {
    const std::string text = encode(sampleProduct()).value();
    EXPECT_EQ(text, filledObject(paidProductFields()));
    EXPECT_EQ(PaidProduct::decode(text).value(), sampleProduct());
}

TEST(PaidProduct, OmitsAbsentTexts) {
    PaidProduct product = sampleProduct();
    for (std::optional<std::string> PaidProduct::*member :
         {&PaidProduct::tagText, &PaidProduct::badgeText, &PaidProduct::badgeSelectedColor,
          &PaidProduct::badgeUnselectedColor, &PaidProduct::tagSelectedColor,
          &PaidProduct::tagUnselectedColor, &PaidProduct::descriptionText, &PaidProduct::badgeTextColor,
          &PaidProduct::tagTextColor, &PaidProduct::descriptionTextColor}) {
        product.*member = std::nullopt;
    }
    EXPECT_EQ(
        encode(product).value(),
        R"({"title":"of title","price":"of price","identifier":"of identifier",)"
        R"("selectedBackgroundColor":"of selectedBackgroundColor",)"
        R"("unselectedBackgroundColor":"of unselectedBackgroundColor",)"
        R"("selectedBorderColor":"of selectedBorderColor","unselectedBorderColor":"of unselectedBorderColor",)"
        R"("titleColor":"of titleColor","priceColor":"of priceColor"})");
}

TEST(PaidProduct, HasEmptyTextsForAbsentKeys) {
    const PaidProduct product = PaidProduct::decode(R"({"tagText":null})").value();
    EXPECT_EQ(product.tagText, "");
    EXPECT_EQ(product.tagSelectedColor, "");
    EXPECT_EQ(product.title, "");
}

TEST(PaidProduct, CannotBeEncodedWithTextThatIsNotUtf8) {
    PaidProduct product = sampleProduct();
    product.badgeText = "\xFF";
    EXPECT_EQ(json::describe(encode(product).error()), "badgeText: the text is not UTF-8");
}

}  // namespace
}  // namespace vorna
