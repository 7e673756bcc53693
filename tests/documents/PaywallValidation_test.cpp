// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/PaywallValidation.h>

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
using test::paidProductFields;
using test::paywallFields;
using test::Values;
using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;

Names missingOf(const std::string& text) {
    return listedNames(missingFields(PaywallParameters::decode(text).value()));
}

/// The fields missing from a complete document with the given values changed.
Names missingWith(const Values& otherwise) {
    return missingOf(filledObject(paywallFields(), otherwise));
}

/// As above, with values of the second of two products changed.
Names missingWithProduct(const Values& otherwise) {
    return missingWith({{"paidProducts", "[" + filledObject(paidProductFields()) + "," +
                                             filledObject(paidProductFields(), otherwise) + "]"}});
}

const std::vector<const char*> needed = {"media",
                                         "heading",
                                         "buttonTitle",
                                         "backgroundColor",
                                         "actionButtonColor1",
                                         "actionButtonColor2",
                                         "headingColor",
                                         "buttonTitleColor",
                                         "detailsColor",
                                         "selectedPaidProduct",
                                         "termsOfUse",
                                         "privacyPolicy",
                                         "footNote",
                                         "footNoteColor",
                                         "termsOfUseColor",
                                         "privacyPolicyColor",
                                         "restoreButtonColor"};
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

TEST(PaywallValidation, AcceptsACompleteDocument) {
    EXPECT_THAT(missingWith({}), IsEmpty());
}

TEST(PaywallValidation, ListsEverythingMissingFromAnEmptyDocument) {
    EXPECT_THAT(missingOf("{}"),
                ElementsAre("actionButtonColor1", "actionButtonColor2", "backgroundColor", "buttonTitle",
                            "buttonTitleColor", "details", "detailsColor", "footNote", "footNoteColor",
                            "heading", "headingColor", "media", "paidProducts (boş)", "privacyPolicy",
                            "privacyPolicyColor", "restoreButtonColor", "selectedPaidProduct", "termsOfUse",
                            "termsOfUseColor"));
}

TEST(PaywallValidation, ListsBlankTexts) {
    for (const char* const key : needed) {
        EXPECT_THAT(missingWith({{key, "null"}}), ElementsAre(key));
        EXPECT_THAT(missingWith({{key, jsonText("")}}), ElementsAre(key));
        EXPECT_THAT(missingWith({{key, jsonText("   ")}}), ElementsAre(key));
        for (const std::string& space : test::whiteSpaces()) {
            EXPECT_THAT(missingWith({{key, jsonText(space + "\n" + space)}}), ElementsAre(key))
                << jsonText(space);
        }
        EXPECT_THAT(missingWith({{key, jsonText(" x\n")}}), IsEmpty());
        EXPECT_THAT(missingWith({{key, jsonText("\u200B")}}), IsEmpty()) << "not white space";
    }
}

TEST(PaywallValidation, DoesNotRequireTheCloseButton) {
    EXPECT_THAT(missingWith({{"exitButtonColor", jsonText("")}, {"exitButtonDelay", "-1"}}), IsEmpty());
}

TEST(PaywallValidation, RequiresALineAndAProduct) {
    EXPECT_THAT(missingWith({{"details", "[]"}}), ElementsAre("details"));
    EXPECT_THAT(missingWith({{"details", R"([""])"}}), IsEmpty());
    EXPECT_THAT(missingWith({{"paidProducts", "[]"}}), ElementsAre("paidProducts (boş)"));
}

TEST(PaywallValidation, ListsBlankTextsOfProducts) {
    for (const char* const key : neededOfProducts) {
        EXPECT_THAT(missingWithProduct({{key, jsonText(" \u3000 ")}}),
                    ElementsAre("paidProducts[1]." + std::string(key)));
    }
    for (const char* const key : notNeededOfProducts) {
        EXPECT_THAT(missingWithProduct({{key, jsonText("")}}), IsEmpty());
    }
}

TEST(PaywallValidation, SortsNamesByTheirBytes) {
    std::string products = "[";
    for (int index = 0; index < 11; ++index) {
        products += (index > 0 ? "," : "") +
                    filledObject(paidProductFields(), index % 2 == 0 ? Values{{"price", jsonText("")},
                                                                              {"priceColor", jsonText("")}}
                                                                     : Values{});
    }
    EXPECT_THAT(
        missingWith({{"paidProducts", products + "]"}, {"media", jsonText("")}, {"footNote", jsonText("")}}),
        ElementsAre("footNote", "media", "paidProducts[0].price", "paidProducts[0].priceColor",
                    "paidProducts[10].price", "paidProducts[10].priceColor", "paidProducts[2].price",
                    "paidProducts[2].priceColor", "paidProducts[4].price", "paidProducts[4].priceColor",
                    "paidProducts[6].price", "paidProducts[6].priceColor", "paidProducts[8].price",
                    "paidProducts[8].priceColor"));
}

TEST(PaywallValidation, ChecksNeitherColoursNorTheSelection) {
    EXPECT_THAT(missingWith({{"headingColor", jsonText("no colour")},
                             {"selectedPaidProduct", jsonText("no product")}}),
                IsEmpty());
}

/// Returns the output of validation and checks its result.
std::string printedBy(const PaywallParameters& paywall) {
    testing::internal::CaptureStdout();
    const Names names = validate(paywall);
    std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(names, listedNames(missingFields(paywall)));
    return printed;
}

TEST(PaywallValidation, PrintsNamesRegardlessOfTheDebugSwitch) {
    const auto whole = PaywallParameters::decode(filledObject(paywallFields())).value();
    const auto poor =
        PaywallParameters::decode(
            filledObject(paywallFields(), {{"media", "null"}, {"heading", "null"}, {"paidProducts", "[]"}}))
            .value();
    for (const bool isOn : {false, true}) {
        log::enabled = isOn;
        EXPECT_EQ(printedBy(whole), "[]\n");
        EXPECT_EQ(printedBy(poor), "[\"heading\", \"media\", \"paidProducts (boş)\"]\n");
    }
}

TEST(PaywallValidation, ReportsPathsAndReasons) {
    const auto paywall = PaywallParameters::decode(
                             filledObject(paywallFields(), {{"heading", jsonText(" ")}, {"details", "[]"}}))
                             .value();
    EXPECT_THAT(missingFields(paywall),
                ElementsAre(MissingField{json::Path{"heading"}, MissingField::Reason::blank},
                            MissingField{json::Path{"details"}, MissingField::Reason::noLines}));
    const auto empty = missingFields(PaywallParameters::decode("{}").value());
    EXPECT_THAT(
        empty, testing::Contains(MissingField{json::Path{"paidProducts"}, MissingField::Reason::noProducts}));
    const auto products =
        PaywallParameters::decode(
            filledObject(
                paywallFields(),
                {{"paidProducts", "[" + filledObject(paidProductFields()) + "," +
                                      filledObject(paidProductFields(), {{"price", "null"}}) + "]"}}))
            .value();
    EXPECT_THAT(missingFields(products), ElementsAre(MissingField{json::Path{"paidProducts", 1U, "price"},
                                                                  MissingField::Reason::blank}));
}

TEST(PaywallValidation, MissingFieldsPrintsNothing) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(missingOf("{}").size(), 19U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace vorna
