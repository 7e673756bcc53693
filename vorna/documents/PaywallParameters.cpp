// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/PaywallParameters.h>

#include <vorna/documents/DocumentCoding.h>

#include <array>
#include <utility>

namespace vorna {

namespace {

constexpr auto table = std::to_array<RecordField<PaywallParameters>>({
    {{"media", FieldKind::url, FieldRequirement::always}, &PaywallParameters::media},
    {{"heading", FieldKind::text, FieldRequirement::always}, &PaywallParameters::heading},
    {{"details", FieldKind::lines, FieldRequirement::always}, &PaywallParameters::details},
    {{"paidProducts", FieldKind::products, FieldRequirement::always}, &PaywallParameters::paidProducts},
    {{"exitButtonDelay", FieldKind::delay, FieldRequirement::never, "", 3},
     &PaywallParameters::exitButtonDelay},
    {{"selectedPaidProduct", FieldKind::identifier, FieldRequirement::always},
     &PaywallParameters::selectedPaidProduct},
    {{"buttonTitle", FieldKind::text, FieldRequirement::always}, &PaywallParameters::buttonTitle},
    {{"termsOfUse", FieldKind::url, FieldRequirement::always}, &PaywallParameters::termsOfUse},
    {{"privacyPolicy", FieldKind::url, FieldRequirement::always}, &PaywallParameters::privacyPolicy},
    {{"footNote", FieldKind::text, FieldRequirement::always}, &PaywallParameters::footNote},
    {{"backgroundColor", FieldKind::colour, FieldRequirement::always}, &PaywallParameters::backgroundColor},
    {{"actionButtonColor1", FieldKind::colour, FieldRequirement::always},
     &PaywallParameters::actionButtonColor1},
    {{"actionButtonColor2", FieldKind::colour, FieldRequirement::always},
     &PaywallParameters::actionButtonColor2},
    {{"headingColor", FieldKind::colour, FieldRequirement::always}, &PaywallParameters::headingColor},
    {{"buttonTitleColor", FieldKind::colour, FieldRequirement::always}, &PaywallParameters::buttonTitleColor},
    {{"termsOfUseColor", FieldKind::colour, FieldRequirement::always}, &PaywallParameters::termsOfUseColor},
    {{"footNoteColor", FieldKind::colour, FieldRequirement::always}, &PaywallParameters::footNoteColor},
    {{"restoreButtonColor", FieldKind::colour, FieldRequirement::always},
     &PaywallParameters::restoreButtonColor},
    {{"privacyPolicyColor", FieldKind::colour, FieldRequirement::always},
     &PaywallParameters::privacyPolicyColor},
    {{"detailsColor", FieldKind::colour, FieldRequirement::always}, &PaywallParameters::detailsColor},
    {{"exitButtonColor", FieldKind::colour, FieldRequirement::never, "#ffffff"},
     &PaywallParameters::exitButtonColor},
});

}  // namespace

PaywallParameters::PaywallParameters(
    std::string mediaValue, std::string headingValue, std::vector<std::string> detailsValue,
    std::vector<PaidProduct> paidProductsValue, std::int64_t exitButtonDelayValue,
    std::string selectedPaidProductValue, std::string buttonTitleValue, std::string termsOfUseValue,
    std::string privacyPolicyValue, std::string footNoteValue, std::string backgroundColorValue,
    std::string actionButtonColor1Value, std::string actionButtonColor2Value, std::string headingColorValue,
    std::string buttonTitleColorValue, std::string termsOfUseColorValue, std::string footNoteColorValue,
    std::string restoreButtonColorValue, std::string privacyPolicyColorValue, std::string detailsColorValue,
    std::string exitButtonColorValue)
    : media(std::move(mediaValue)),
      heading(std::move(headingValue)),
      details(std::move(detailsValue)),
      paidProducts(std::move(paidProductsValue)),
      exitButtonDelay(exitButtonDelayValue),
      selectedPaidProduct(std::move(selectedPaidProductValue)),
      buttonTitle(std::move(buttonTitleValue)),
      termsOfUse(std::move(termsOfUseValue)),
      privacyPolicy(std::move(privacyPolicyValue)),
      footNote(std::move(footNoteValue)),
      backgroundColor(std::move(backgroundColorValue)),
      actionButtonColor1(std::move(actionButtonColor1Value)),
      actionButtonColor2(std::move(actionButtonColor2Value)),
      headingColor(std::move(headingColorValue)),
      buttonTitleColor(std::move(buttonTitleColorValue)),
      termsOfUseColor(std::move(termsOfUseColorValue)),
      footNoteColor(std::move(footNoteColorValue)),
      restoreButtonColor(std::move(restoreButtonColorValue)),
      privacyPolicyColor(std::move(privacyPolicyColorValue)),
      detailsColor(std::move(detailsColorValue)),
      exitButtonColor(std::move(exitButtonColorValue)) {}

std::span<const RecordField<PaywallParameters>> PaywallParameters::fields() noexcept {
    return table;
}

Result<PaywallParameters, json::DecodingError> PaywallParameters::decode(std::string_view json) {
    return document::decode(json, PaywallParameters());
}

Result<std::string, json::EncodingError> encode(const PaywallParameters& paywall) {
    return json::encode(paywall);
}

}  // namespace vorna
