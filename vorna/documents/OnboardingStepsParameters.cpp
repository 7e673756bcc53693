// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/OnboardingStepsParameters.h>

#include <vorna/documents/DocumentCoding.h>

#include <array>
#include <utility>

namespace vorna {

namespace {

constexpr auto table = std::to_array<RecordField<OnboardingStepsParameters>>({
    {{"type", FieldKind::stepType, FieldRequirement::always}, &OnboardingStepsParameters::type},
    {{"media", FieldKind::url, FieldRequirement::always}, &OnboardingStepsParameters::media},
    {{"title", FieldKind::text, FieldRequirement::always}, &OnboardingStepsParameters::title},
    {{"titleColor", FieldKind::colour, FieldRequirement::always}, &OnboardingStepsParameters::titleColor},
    {{"heading", FieldKind::text, FieldRequirement::always}, &OnboardingStepsParameters::heading},
    {{"headingColor", FieldKind::colour, FieldRequirement::always}, &OnboardingStepsParameters::headingColor},
    {{"details", FieldKind::lines, FieldRequirement::never}, &OnboardingStepsParameters::details},
    {{"detailsColor", FieldKind::colour, FieldRequirement::never}, &OnboardingStepsParameters::detailsColor},
    {{"buttonTitle", FieldKind::text, FieldRequirement::always}, &OnboardingStepsParameters::buttonTitle},
    {{"buttonTitleColor", FieldKind::colour, FieldRequirement::always},
     &OnboardingStepsParameters::buttonTitleColor},
    {{"termsOfUse", FieldKind::url, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::termsOfUse},
    {{"termsOfUseColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::termsOfUseColor},
    {{"footNote", FieldKind::text, FieldRequirement::onPaywallSteps}, &OnboardingStepsParameters::footNote},
    {{"footNoteColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::footNoteColor},
    {{"paidProducts", FieldKind::products, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::paidProducts},
    {{"selectedPaidProduct", FieldKind::identifier, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::selectedPaidProduct},
    {{"exitButtonDelay", FieldKind::delay, FieldRequirement::never, "", 3},
     &OnboardingStepsParameters::exitButtonDelay},
    {{"privacyPolicy", FieldKind::url, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::privacyPolicy},
    {{"backgroundColor", FieldKind::colour, FieldRequirement::always},
     &OnboardingStepsParameters::backgroundColor},
    {{"actionButtonColor1", FieldKind::colour, FieldRequirement::always},
     &OnboardingStepsParameters::actionButtonColor1},
    {{"actionButtonColor2", FieldKind::colour, FieldRequirement::always},
     &OnboardingStepsParameters::actionButtonColor2},
    {{"restoreButtonColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::restoreButtonColor},
    {{"privacyPolicyColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
     &OnboardingStepsParameters::privacyPolicyColor},
    {{"exitButtonColor", FieldKind::colour, FieldRequirement::never, "#ffffff"},
     &OnboardingStepsParameters::exitButtonColor},
});

}  // namespace

OnboardingStepsParameters::OnboardingStepsParameters(
    std::string typeValue, std::string mediaValue, std::string headingValue,
    std::vector<std::string> detailsValue, std::string buttonTitleValue,
    std::vector<PaidProduct> paidProductsValue, std::string selectedPaidProductValue,
    std::int64_t exitButtonDelayValue, std::string termsOfUseValue, std::string privacyPolicyValue,
    std::string titleValue, std::string footNoteValue, std::string backgroundColorValue,
    std::string actionButtonColor1Value, std::string actionButtonColor2Value, std::string detailsColorValue,
    std::string titleColorValue, std::string headingColorValue, std::string buttonTitleColorValue,
    std::string termsOfUseColorValue, std::string footNoteColorValue, std::string restoreButtonColorValue,
    std::string privacyPolicyColorValue, std::string exitButtonColorValue)
    : type(std::move(typeValue)),
      media(std::move(mediaValue)),
      title(std::move(titleValue)),
      titleColor(std::move(titleColorValue)),
      heading(std::move(headingValue)),
      headingColor(std::move(headingColorValue)),
      details(std::move(detailsValue)),
      detailsColor(std::move(detailsColorValue)),
      buttonTitle(std::move(buttonTitleValue)),
      buttonTitleColor(std::move(buttonTitleColorValue)),
      termsOfUse(std::move(termsOfUseValue)),
      termsOfUseColor(std::move(termsOfUseColorValue)),
      footNote(std::move(footNoteValue)),
      footNoteColor(std::move(footNoteColorValue)),
      paidProducts(std::move(paidProductsValue)),
      selectedPaidProduct(std::move(selectedPaidProductValue)),
      exitButtonDelay(exitButtonDelayValue),
      privacyPolicy(std::move(privacyPolicyValue)),
      backgroundColor(std::move(backgroundColorValue)),
      actionButtonColor1(std::move(actionButtonColor1Value)),
      actionButtonColor2(std::move(actionButtonColor2Value)),
      restoreButtonColor(std::move(restoreButtonColorValue)),
      privacyPolicyColor(std::move(privacyPolicyColorValue)),
      exitButtonColor(std::move(exitButtonColorValue)) {}

std::span<const RecordField<OnboardingStepsParameters>> OnboardingStepsParameters::fields() noexcept {
    return table;
}

Result<std::vector<OnboardingStepsParameters>, json::DecodingError>
decodeOnboardingSteps(std::string_view json) {
    return document::decode(json, std::vector<OnboardingStepsParameters>());
}

Result<std::string, json::EncodingError> encode(const OnboardingStepsParameters& step) {
    return json::encode(step);
}

Result<std::string, json::EncodingError> encode(const std::vector<OnboardingStepsParameters>& steps) {
    return json::encode(steps);
}

}  // namespace vorna
