// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/OnboardingValidation.h>

#include <tests/documents/support/Documents.h>

#include <vorna/platform/Log.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorna {
namespace {

using test::filledObject;
using test::jsonText;
using test::onboardingStepFields;
using test::paidProductFields;
using test::Values;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;
using Names = std::vector<std::string>;

OnboardingStepsParameters stepOf(const std::string& text) {
    return decodeOnboardingSteps("[" + text + "]").value().front();
}

Names namesOf(const OnboardingStepsParameters& step) {
    return listedNames(missingFields(step));
}

/// The fields missing from a complete step of the type with the given values changed.
Names missingWith(const char* type, Values otherwise) {
    otherwise.try_emplace("type", jsonText(type));
    return namesOf(stepOf(filledObject(onboardingStepFields(), otherwise)));
}

const std::vector<const char*> needed = {"media",
                                         "heading",
                                         "buttonTitle",
                                         "title",
                                         "backgroundColor",
                                         "actionButtonColor1",
                                         "actionButtonColor2",
                                         "titleColor",
                                         "headingColor",
                                         "buttonTitleColor"};
const std::vector<const char*> neededOnPaywallSteps = {
    "selectedPaidProduct", "termsOfUse",      "privacyPolicy",      "footNote",
    "footNoteColor",       "termsOfUseColor", "privacyPolicyColor", "restoreButtonColor"};
const std::vector<const char*> neededOfProducts = {"title",
                                                   "price",
                                                   "identifier",
                                                   "selectedBackgroundColor",
                                                   "unselectedBackgroundColor",
                                                   "selectedBorderColor",
                                                   "unselectedBorderColor",
                                                   "titleColor",
                                                   "priceColor"};
const std::vector<const char*> notNeededOfProducts = {
    "tagText",          "badgeText",           "badgeSelectedColor", "badgeUnselectedColor",
    "tagSelectedColor", "tagUnselectedColor",  "descriptionText",    "badgeTextColor",
    "tagTextColor",     "descriptionTextColor"};

TEST(OnboardingValidation, AcceptsACompleteStep) {
    EXPECT_THAT(missingWith("basic", {}), IsEmpty());
    EXPECT_THAT(missingWith("paywall", {}), IsEmpty());
}

TEST(OnboardingValidation, ListsEverythingMissingFromAnEmptyStep) {
    EXPECT_THAT(namesOf(stepOf("{}")),
                ElementsAre("actionButtonColor1", "actionButtonColor2", "backgroundColor", "buttonTitle",
                            "buttonTitleColor", "heading", "headingColor", "media", "title", "titleColor",
                            "type (geçersiz)"));
}

TEST(OnboardingValidation, ListsEverythingMissingFromAnEmptyPaywallStep) {
    EXPECT_THAT(namesOf(stepOf(R"({"type":"paywall"})")),
                ElementsAre("actionButtonColor1", "actionButtonColor2", "backgroundColor", "buttonTitle",
                            "buttonTitleColor", "footNote", "footNoteColor", "heading", "headingColor",
                            "media", "paidProducts (boş)", "privacyPolicy", "privacyPolicyColor",
                            "restoreButtonColor", "selectedPaidProduct", "termsOfUse", "termsOfUseColor",
                            "title", "titleColor"));
}

TEST(OnboardingValidation, ListsBlankTextsOnEveryStep) {
    for (const char* const key : needed) {
        for (const char* const type : {"basic", "paywall"}) {
            EXPECT_THAT(missingWith(type, {{key, "null"}}), ElementsAre(key));
            EXPECT_THAT(missingWith(type, {{key, jsonText("")}}), ElementsAre(key));
            for (const std::string& space : test::whiteSpaces()) {
                EXPECT_THAT(missingWith(type, {{key, jsonText(space + " \n" + space)}}), ElementsAre(key))
                    << jsonText(space);
            }
            EXPECT_THAT(missingWith(type, {{key, jsonText("\n.")}}), IsEmpty());
        }
        EXPECT_THAT(missingWith("other", {{key, jsonText("")}}),
                    UnorderedElementsAreArray(Names{key, "type (geçersiz)"}));
    }
}

TEST(OnboardingValidation, RequiresMoreOnlyOnPaywallSteps) {
    for (const char* const key : neededOnPaywallSteps) {
        EXPECT_THAT(missingWith("paywall", {{key, jsonText(" \u2029")}}), ElementsAre(key));
        EXPECT_THAT(missingWith("basic", {{key, jsonText("")}}), IsEmpty());
        EXPECT_THAT(missingWith("other", {{key, jsonText("")}}), ElementsAre("type (geçersiz)"));
    }
}

TEST(OnboardingValidation, NeverRequiresLinesOrTheCloseButton) {
    for (const char* const type : {"basic", "paywall"}) {
        EXPECT_THAT(missingWith(type, {{"details", "[]"},
                                       {"detailsColor", jsonText("")},
                                       {"exitButtonColor", jsonText("")},
                                       {"exitButtonDelay", "-1"}}),
                    IsEmpty());
    }
}

TEST(OnboardingValidation, ComparesTheTypeExactly) {
    for (const char* const type :
         {"", " basic", "basic ", "Basic", "BASIC", "Paywall", "paywall\n", "bas", "basicx"}) {
        EXPECT_THAT(missingWith(type, {}), ElementsAre("type (geçersiz)")) << jsonText(type);
    }
    EXPECT_THAT(missingWith("", {{"type", "null"}}), ElementsAre("type (geçersiz)"));
    EXPECT_THAT(missingWith("", {{"type", R"("basic\u0000")"}}), ElementsAre("type (geçersiz)"));
}

TEST(OnboardingValidation, ChecksProductsOnlyOnPaywallSteps) {
    const auto products = [](const Values& otherwise) {
        const std::string product = filledObject(paidProductFields(), otherwise);
        return Values{{"paidProducts", "[" + product + "," + product + "]"}};
    };
    for (const char* const key : neededOfProducts) {
        const std::string name = "]." + std::string(key);
        EXPECT_THAT(missingWith("paywall", products({{key, jsonText("  ")}})),
                    ElementsAre("paidProducts[0" + name, "paidProducts[1" + name));
        EXPECT_THAT(missingWith("basic", products({{key, jsonText("")}})), IsEmpty());
        EXPECT_THAT(missingWith("other", products({{key, jsonText("")}})), ElementsAre("type (geçersiz)"));
    }
    for (const char* const key : notNeededOfProducts) {
        EXPECT_THAT(missingWith("paywall", products({{key, jsonText("")}})), IsEmpty());
    }
    EXPECT_THAT(missingWith("paywall", {{"paidProducts", "[]"}}), ElementsAre("paidProducts (boş)"));
    EXPECT_THAT(missingWith("basic", {{"paidProducts", "[]"}}), IsEmpty());
}

TEST(OnboardingValidation, ReportsPathsAndReasons) {
    const std::string step = filledObject(
        onboardingStepFields(), {{"type", jsonText("Basic")}, {"media", "null"}, {"paidProducts", "[]"}});
    EXPECT_THAT(missingFields(stepOf(step)),
                ElementsAre(MissingField{json::Path{"type"}, MissingField::Reason::unknownType},
                            MissingField{json::Path{"media"}, MissingField::Reason::blank}));
}

TEST(OnboardingValidation, PrintsNamesRegardlessOfTheDebugSwitch) {
    const OnboardingStepsParameters whole = stepOf(filledObject(onboardingStepFields()));
    const OnboardingStepsParameters poor = stepOf(filledObject(
        onboardingStepFields(), {{"type", jsonText("")}, {"media", "null"}, {"heading", "null"}}));
    for (const bool isOn : {false, true}) {
        log::enabled = isOn;
        testing::internal::CaptureStdout();
        EXPECT_THAT(validate(whole), IsEmpty());
        EXPECT_THAT(validate(poor), ElementsAre("heading", "media", "type (geçersiz)"));
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "[]\n[\"heading\", \"media\", \"type (geçersiz)\"]\n");
    }
}

}  // namespace
}  // namespace vorna
