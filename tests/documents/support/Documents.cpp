// SPDX-License-Identifier: Apache-2.0
#include <tests/documents/support/Documents.h>

#include <vorna/documents/OnboardingStepsParameters.h>
#include <vorna/documents/PaywallParameters.h>

#include <boost/json/serialize.hpp>
#include <boost/json/string_view.hpp>

#include <utility>

namespace vorna::test {

namespace {

using Recoded = Result<std::string, json::DecodingError>;

/// The encoding of what was decoded, or the error.
template <class Decoded>
Recoded recodedFrom(Decoded decoded) {
    if (!decoded) {
        return Unexpected(decoded.error());
    }
    return encode(*decoded).value();
}

Recoded recodedProduct(const std::string& object) {
    return recodedFrom(PaidProduct::decode(object));
}

Recoded recodedPaywall(const std::string& object) {
    return recodedFrom(PaywallParameters::decode(object));
}

Recoded recodedStep(const std::string& object) {
    Recoded array = recodedFrom(decodeOnboardingSteps("[" + object + "]"));
    return array ? array->substr(1, array->size() - 2) : array;
}

}  // namespace

const std::vector<ExpectedField>& paidProductFields() {
    static const std::vector<ExpectedField> fields = {
        {"title", FieldKind::text, FieldRequirement::always},
        {"price", FieldKind::text, FieldRequirement::always},
        {"identifier", FieldKind::identifier, FieldRequirement::always},
        {"selectedBackgroundColor", FieldKind::colour, FieldRequirement::always},
        {"unselectedBackgroundColor", FieldKind::colour, FieldRequirement::always},
        {"selectedBorderColor", FieldKind::colour, FieldRequirement::always},
        {"unselectedBorderColor", FieldKind::colour, FieldRequirement::always},
        {"tagText", FieldKind::text, FieldRequirement::never},
        {"badgeText", FieldKind::text, FieldRequirement::never},
        {"badgeSelectedColor", FieldKind::colour, FieldRequirement::never},
        {"badgeUnselectedColor", FieldKind::colour, FieldRequirement::never},
        {"tagSelectedColor", FieldKind::colour, FieldRequirement::never},
        {"tagUnselectedColor", FieldKind::colour, FieldRequirement::never},
        {"descriptionText", FieldKind::text, FieldRequirement::never},
        {"badgeTextColor", FieldKind::colour, FieldRequirement::never},
        {"titleColor", FieldKind::colour, FieldRequirement::always},
        {"priceColor", FieldKind::colour, FieldRequirement::always},
        {"tagTextColor", FieldKind::colour, FieldRequirement::never},
        {"descriptionTextColor", FieldKind::colour, FieldRequirement::never},
    };
    return fields;
}

const std::vector<ExpectedField>& paywallFields() {
    static const std::vector<ExpectedField> fields = {
        {"media", FieldKind::url, FieldRequirement::always},
        {"heading", FieldKind::text, FieldRequirement::always},
        {"details", FieldKind::lines, FieldRequirement::always, "[]"},
        {"paidProducts", FieldKind::products, FieldRequirement::always, "[]"},
        {"exitButtonDelay", FieldKind::delay, FieldRequirement::never, "3"},
        {"selectedPaidProduct", FieldKind::identifier, FieldRequirement::always},
        {"buttonTitle", FieldKind::text, FieldRequirement::always},
        {"termsOfUse", FieldKind::url, FieldRequirement::always},
        {"privacyPolicy", FieldKind::url, FieldRequirement::always},
        {"footNote", FieldKind::text, FieldRequirement::always},
        {"backgroundColor", FieldKind::colour, FieldRequirement::always},
        {"actionButtonColor1", FieldKind::colour, FieldRequirement::always},
        {"actionButtonColor2", FieldKind::colour, FieldRequirement::always},
        {"headingColor", FieldKind::colour, FieldRequirement::always},
        {"buttonTitleColor", FieldKind::colour, FieldRequirement::always},
        {"termsOfUseColor", FieldKind::colour, FieldRequirement::always},
        {"footNoteColor", FieldKind::colour, FieldRequirement::always},
        {"restoreButtonColor", FieldKind::colour, FieldRequirement::always},
        {"privacyPolicyColor", FieldKind::colour, FieldRequirement::always},
        {"detailsColor", FieldKind::colour, FieldRequirement::always},
        {"exitButtonColor", FieldKind::colour, FieldRequirement::never, R"("#ffffff")"},
    };
    return fields;
}

const std::vector<ExpectedField>& onboardingStepFields() {
    static const std::vector<ExpectedField> fields = {
        {"type", FieldKind::stepType, FieldRequirement::always},
        {"media", FieldKind::url, FieldRequirement::always},
        {"title", FieldKind::text, FieldRequirement::always},
        {"titleColor", FieldKind::colour, FieldRequirement::always},
        {"heading", FieldKind::text, FieldRequirement::always},
        {"headingColor", FieldKind::colour, FieldRequirement::always},
        {"details", FieldKind::lines, FieldRequirement::never, "[]"},
        {"detailsColor", FieldKind::colour, FieldRequirement::never},
        {"buttonTitle", FieldKind::text, FieldRequirement::always},
        {"buttonTitleColor", FieldKind::colour, FieldRequirement::always},
        {"termsOfUse", FieldKind::url, FieldRequirement::onPaywallSteps},
        {"termsOfUseColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
        {"footNote", FieldKind::text, FieldRequirement::onPaywallSteps},
        {"footNoteColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
        {"paidProducts", FieldKind::products, FieldRequirement::onPaywallSteps, "[]"},
        {"selectedPaidProduct", FieldKind::identifier, FieldRequirement::onPaywallSteps},
        {"exitButtonDelay", FieldKind::delay, FieldRequirement::never, "3"},
        {"privacyPolicy", FieldKind::url, FieldRequirement::onPaywallSteps},
        {"backgroundColor", FieldKind::colour, FieldRequirement::always},
        {"actionButtonColor1", FieldKind::colour, FieldRequirement::always},
        {"actionButtonColor2", FieldKind::colour, FieldRequirement::always},
        {"restoreButtonColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
        {"privacyPolicyColor", FieldKind::colour, FieldRequirement::onPaywallSteps},
        {"exitButtonColor", FieldKind::colour, FieldRequirement::never, R"("#ffffff")"},
    };
    return fields;
}

const std::vector<DocumentType>& documentTypes() {
    static const std::vector<DocumentType> types = {
        {"PaidProduct", paidProductFields(), recodedProduct, {}},
        {"Paywall", paywallFields(), recodedPaywall, {}},
        {"OnboardingStep", onboardingStepFields(), recodedStep, {0U}},
    };
    return types;
}

std::string wholeObject(const std::vector<ExpectedField>& fields, const Values& values) {
    std::string text = "{";
    for (const ExpectedField& field : fields) {
        const auto value = values.find(field.key);
        text += (text.size() > 1 ? "," : "") + jsonText(field.key) + ":" +
                (value == values.end() ? field.defaultText : value->second);
    }
    return text + "}";
}

std::string filledValue(const ExpectedField& field) {
    switch (field.kind) {
    case FieldKind::delay:
        return "5";
    case FieldKind::lines:
        return R"(["a line"])";
    case FieldKind::products:
        return "[" + filledObject(paidProductFields()) + "]";
    case FieldKind::stepType:
        return jsonText("paywall");
    default:
        return jsonText(std::string("of ") + field.key);
    }
}

std::string filledObject(const std::vector<ExpectedField>& fields, const Values& otherwise) {
    Values values = otherwise;
    for (const ExpectedField& field : fields) {
        values.try_emplace(field.key, filledValue(field));
    }
    return wholeObject(fields, values);
}

PaidProduct sampleProduct() {
    return {"of title",
            "of price",
            "of identifier",
            "of selectedBackgroundColor",
            "of unselectedBackgroundColor",
            "of selectedBorderColor",
            "of unselectedBorderColor",
            "of tagText",
            "of badgeText",
            "of badgeSelectedColor",
            "of badgeUnselectedColor",
            "of tagSelectedColor",
            "of tagUnselectedColor",
            "of descriptionText",
            "of badgeTextColor",
            "of titleColor",
            "of priceColor",
            "of tagTextColor",
            "of descriptionTextColor"};
}

std::string jsonText(std::string_view text) {
    return boost::json::serialize(boost::json::string_view(text.data(), text.size()));
}

const std::vector<std::string>& whiteSpaces() {
    static const std::vector<std::string> all = {
        "\t",     "\n",     "\v",     "\f",     "\r",     " ",      "\xC2\x85", "\u00A0", "\u1680",
        "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006",   "\u2007", "\u2008",
        "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000",
    };
    return all;
}

}  // namespace vorna::test
