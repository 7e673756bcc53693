// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/PaidProduct.h>

#include <vorna/documents/DocumentCoding.h>

#include <array>
#include <utility>

namespace vorna {

namespace {

constexpr auto table = std::to_array<RecordField<PaidProduct>>({
    {{"title", FieldKind::text, FieldRequirement::always}, &PaidProduct::title},
    {{"price", FieldKind::text, FieldRequirement::always}, &PaidProduct::price},
    {{"identifier", FieldKind::identifier, FieldRequirement::always}, &PaidProduct::identifier},
    {{"selectedBackgroundColor", FieldKind::colour, FieldRequirement::always},
     &PaidProduct::selectedBackgroundColor},
    {{"unselectedBackgroundColor", FieldKind::colour, FieldRequirement::always},
     &PaidProduct::unselectedBackgroundColor},
    {{"selectedBorderColor", FieldKind::colour, FieldRequirement::always}, &PaidProduct::selectedBorderColor},
    {{"unselectedBorderColor", FieldKind::colour, FieldRequirement::always},
     &PaidProduct::unselectedBorderColor},
    {{"tagText", FieldKind::text, FieldRequirement::never}, &PaidProduct::tagText},
    {{"badgeText", FieldKind::text, FieldRequirement::never}, &PaidProduct::badgeText},
    {{"badgeSelectedColor", FieldKind::colour, FieldRequirement::never}, &PaidProduct::badgeSelectedColor},
    {{"badgeUnselectedColor", FieldKind::colour, FieldRequirement::never},
     &PaidProduct::badgeUnselectedColor},
    {{"tagSelectedColor", FieldKind::colour, FieldRequirement::never}, &PaidProduct::tagSelectedColor},
    {{"tagUnselectedColor", FieldKind::colour, FieldRequirement::never}, &PaidProduct::tagUnselectedColor},
    {{"descriptionText", FieldKind::text, FieldRequirement::never}, &PaidProduct::descriptionText},
    {{"badgeTextColor", FieldKind::colour, FieldRequirement::never}, &PaidProduct::badgeTextColor},
    {{"titleColor", FieldKind::colour, FieldRequirement::always}, &PaidProduct::titleColor},
    {{"priceColor", FieldKind::colour, FieldRequirement::always}, &PaidProduct::priceColor},
    {{"tagTextColor", FieldKind::colour, FieldRequirement::never}, &PaidProduct::tagTextColor},
    {{"descriptionTextColor", FieldKind::colour, FieldRequirement::never},
     &PaidProduct::descriptionTextColor},
});

}  // namespace

PaidProduct::PaidProduct(std::string titleValue, std::string priceValue, std::string identifierValue,
                         std::string selectedBackgroundColorValue, std::string unselectedBackgroundColorValue,
                         std::string selectedBorderColorValue, std::string unselectedBorderColorValue,
                         std::optional<std::string> tagTextValue, std::optional<std::string> badgeTextValue,
                         std::optional<std::string> badgeSelectedColorValue,
                         std::optional<std::string> badgeUnselectedColorValue,
                         std::optional<std::string> tagSelectedColorValue,
                         std::optional<std::string> tagUnselectedColorValue,
                         std::optional<std::string> descriptionTextValue,
                         std::optional<std::string> badgeTextColorValue, std::string titleColorValue,
                         std::string priceColorValue, std::optional<std::string> tagTextColorValue,
                         std::optional<std::string> descriptionTextColorValue)
    : title(std::move(titleValue)),
      price(std::move(priceValue)),
      identifier(std::move(identifierValue)),
      selectedBackgroundColor(std::move(selectedBackgroundColorValue)),
      unselectedBackgroundColor(std::move(unselectedBackgroundColorValue)),
      selectedBorderColor(std::move(selectedBorderColorValue)),
      unselectedBorderColor(std::move(unselectedBorderColorValue)),
      tagText(std::move(tagTextValue)),
      badgeText(std::move(badgeTextValue)),
      badgeSelectedColor(std::move(badgeSelectedColorValue)),
      badgeUnselectedColor(std::move(badgeUnselectedColorValue)),
      tagSelectedColor(std::move(tagSelectedColorValue)),
      tagUnselectedColor(std::move(tagUnselectedColorValue)),
      descriptionText(std::move(descriptionTextValue)),
      badgeTextColor(std::move(badgeTextColorValue)),
      titleColor(std::move(titleColorValue)),
      priceColor(std::move(priceColorValue)),
      tagTextColor(std::move(tagTextColorValue)),
      descriptionTextColor(std::move(descriptionTextColorValue)) {}

std::span<const RecordField<PaidProduct>> PaidProduct::fields() noexcept {
    return table;
}

Result<PaidProduct, json::DecodingError> PaidProduct::decode(std::string_view json) {
    return document::decode(json, PaidProduct());
}

Result<std::string, json::EncodingError> encode(const PaidProduct& product) {
    return json::encode(product);
}

}  // namespace vorna
