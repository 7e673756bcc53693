// SPDX-License-Identifier: Apache-2.0
// Each rule with documents that have the problem and documents that do not.

#include <tools/lint/Rules.h>

#include <tests/tools/lint/SampleDocuments.h>

#include <tools/lint/Lint.h>

#include <gmock/gmock.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vorna::lint {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

using Paths = std::vector<std::string>;

struct RuleCase {
    const char* name;
    const char* code;
    std::string document;
    /// Of the findings of the rule, in the order of the text.
    Paths paths;
    std::optional<DocumentKind> kind = std::nullopt;
};

std::string line(std::size_t characters) {
    return R"({"details":[")" + std::string(characters, 'x') + R"("]})";
}

const std::vector<RuleCase>& cases() {
    static const std::vector<RuleCase> all = {
        {"EmptyText", "not-json", "", {""}},
        {"BlankText", "not-json", " \n\t", {""}},
        {"Words", "not-json", "hello", {""}},
        {"ACommaTooMany", "not-json", R"({"details":["a",]})", {""}},
        {"TwoValues", "not-json", "{} {}", {""}},
        {"HalfADocument", "not-json", R"([{"type":"basic")", {""}},
        {"ByteOrderMark", "not-json", "\xEF\xBB\xBF{}", {""}},
        {"BytesThatAreNotUtf8", "not-json", "{\"heading\":\"\xFF\"}", {""}},
        {"AGoodPaywall", "not-json", paywall(), {}},
        {"AGoodOnboarding", "not-json", onboarding(), {}},

        {"ANumber", "not-a-document", "3", {""}},
        {"AText", "not-a-document", R"("paywall")", {""}},
        {"Null", "not-a-document", "null", {""}},
        {"AnObject", "not-a-document", "{}", {}},
        {"AnArray", "not-a-document", "[]", {}},
        {"ANumberThatIsSaidToBeAPaywall", "not-a-document", "3", {}, DocumentKind::paywall},

        {"ANumberAsAText", "wrong-type", paywall(R"({"heading":3})"), {"heading"}},
        {"ATextAsANumber", "wrong-type", paywall(R"({"exitButtonDelay":"5"})"), {"exitButtonDelay"}},
        {"AFraction", "wrong-type", paywall(R"({"exitButtonDelay":1.5})"), {"exitButtonDelay"}},
        {"ANumberThatIsTooLarge",
         "wrong-type",
         paywall(R"({"exitButtonDelay":9223372036854775808})"),
         {"exitButtonDelay"}},
        {"AWholeNumberWithAFraction", "wrong-type", paywall(R"({"exitButtonDelay":5.0})"), {}},
        {"AWholeNumberWithAnExponent", "wrong-type", paywall(R"({"exitButtonDelay":5e0})"), {}},
        {"ATextAsAList", "wrong-type", paywall(R"({"details":"one"})"), {"details"}},
        {"NullInAList", "wrong-type", paywall(R"({"details":["one",null]})"), {"details[1]"}},
        {"AnObjectAsAList", "wrong-type", paywall(R"({"paidProducts":{}})"), {"paidProducts"}},
        {"NullAsAProduct",
         "wrong-type",
         paywall(R"({"paidProducts":[null,[{}]]})"),
         {"paidProducts[0]", "paidProducts[1]"}},
        {"ANumberAsAPrice", "wrong-type", paywall("{}", R"({"price":19.99})"), {"paidProducts[0].price"}},
        {"TwoWrongFieldsInOneDocument",
         "wrong-type",
         paywall(R"({"details":[1,2]})", R"({"title":true})"),
         {"paidProducts[0].title", "details[0]", "details[1]"}},
        {"NullAsAField",
         "wrong-type",
         paywall(R"({"heading":null,"details":null,"exitButtonDelay":null})"),
         {}},
        {"AWrongTypeUnderAnUnknownKey", "wrong-type", paywall(R"({"campaign":3})"), {}},
        {"AnObjectThatIsSaidToBeAnOnboarding", "wrong-type", paywall(), {""}, DocumentKind::onboarding},
        {"AnArrayThatIsSaidToBeAPaywall", "wrong-type", onboarding(), {""}, DocumentKind::paywall},
        {"AStepThatIsNoObject", "wrong-type", R"([3,{"type":"basic"},null])", {"[0]", "[2]"}},
        {"AWrongTypeInAStep",
         "wrong-type",
         onboarding("{}", "{}", R"({"titleColor":0})"),
         {"[1].paidProducts[0].titleColor"}},
        {"AWrongTypeThatALaterKeyReplaces", "wrong-type", R"({"heading":3,"heading":"Pro"})", {}},
        {"AWrongTypeThatReplacesAnother", "wrong-type", R"({"heading":"Pro","heading":3})", {"heading"}},

        {"ACapitalLetter", "unknown-type", onboarding(R"({"type":"Basic"})"), {"[0].type"}},
        {"ASpaceBefore", "unknown-type", onboarding(R"({"type":" basic"})"), {"[0].type"}},
        {"NoType", "unknown-type", onboarding(R"({"type":"<absent>"})"), {"[0].type"}},
        {"BothTypes", "unknown-type", onboarding(), {}},
        {"ATypeOnAPaywall", "unknown-type", paywall(R"({"type":"other"})"), {}},

        {"AnAbsentHeading", "missing-field", paywall(R"({"heading":"<absent>"})"), {"heading"}},
        {"ABlankHeading", "missing-field", paywall(R"({"heading":" \n\u00a0\u3000"})"), {"heading"}},
        {"ANullHeading", "missing-field", paywall(R"({"heading":null})"), {"heading"}},
        {"AnEmptyListOfLines", "missing-field", paywall(R"({"details":[]})"), {"details"}},
        {"ABlankPrice", "missing-field", paywall("{}", R"({"price":""})"), {"paidProducts[0].price"}},
        {"ABasicStepWithoutTitle", "missing-field", onboarding(R"({"title":""})"), {"[0].title"}},
        {"APaywallStepWithoutFootNote",
         "missing-field",
         onboarding("{}", R"({"footNote":"<absent>"})"),
         {"[1].footNote"}},
        {"AProductOfAPaywallStep",
         "missing-field",
         onboarding("{}", "{}", R"({"identifier":"\t"})"),
         {"[1].paidProducts[0].identifier"}},
        {"NoProductsHaveARuleOfTheirOwn", "missing-field", paywall(R"({"paidProducts":[]})"), {}},
        {"ABasicStepNeedsNoFootNote", "missing-field", onboarding(), {}},
        {"WhatIsNotNeeded", "missing-field", paywall("{}", R"({"tagText":"","badgeText":null})"), {}},

        {"AnEmptyRow", "no-products", paywall(R"({"paidProducts":[]})"), {"paidProducts"}},
        {"NoRow", "no-products", paywall(R"({"paidProducts":"<absent>"})"), {"paidProducts"}},
        {"APaywallStepWithoutProducts",
         "no-products",
         onboarding("{}", R"({"paidProducts":null})"),
         {"[1].paidProducts"}},
        {"ABasicStepWithoutProducts", "no-products", onboarding(), {}},

        {"AnEmptyOnboarding", "no-steps", " [ ] ", {""}},
        {"TwoSteps", "no-steps", onboarding(), {}},
        {"AnEmptyPaywall", "no-steps", "{}", {}},
        {"AnEmptyOnboardingThatIsSaidToBeAPaywall", "no-steps", "[]", {}, DocumentKind::paywall},

        {"OnAPaywall",
         "unknown-key",
         paywall(R"({"headingColour":"#FFFFFF","x":1})"),
         {"headingColour", "x"}},
        {"OnAProduct", "unknown-key", paywall("{}", R"({"Price":"$1"})"), {"paidProducts[0].Price"}},
        {"OnAStep", "unknown-key", onboarding(R"({"subtitle":""})"), {"[0].subtitle"}},
        {"AFieldOfStepsOnAPaywall", "unknown-key", paywall(R"({"title":"Pro"})"), {"title"}},
        {"InsideAnUnknownKey", "unknown-key", paywall(R"({"x":{"y":{"z":1}}})"), {"x"}},
        {"EveryFieldOfAProduct",
         "unknown-key",
         paywall("{}", R"({"tagText":"","badgeText":"","badgeSelectedColor":"","badgeUnselectedColor":"",
             "tagSelectedColor":"","tagUnselectedColor":"","descriptionText":"","badgeTextColor":"",
             "tagTextColor":"","descriptionTextColor":""})"),
         {}},

        {"Twice", "duplicate-key", R"({"heading":"a","heading":"b"})", {"heading"}},
        {"ThreeTimes", "duplicate-key", R"({"x":1,"x":2,"x":3})", {"x", "x"}},
        {"WithAnEscape", "duplicate-key", R"({"heading":"a","he\u0061ding":"b"})", {"heading"}},
        {"InAProduct",
         "duplicate-key",
         R"({"paidProducts":[{"price":"1","price":"2"}]})",
         {"paidProducts[0].price"}},
        {"InTwoProducts", "duplicate-key", paywall(), {}},

        {"DetailsOfABasicStep",
         "never-shown",
         onboarding(R"({"details":["one"],"detailsColor":"#FFFFFF"})"),
         {"[0].details", "[0].detailsColor"}},
        {"DetailsOfAPaywallStep", "never-shown", onboarding("{}", R"({"details":["one"]})"), {"[1].details"}},
        {"AnOfferOnABasicStep",
         "never-shown",
         onboarding(R"({"footNote":"Small","paidProducts":[{}],"termsOfUseColor":"#000000"})"),
         {"[0].footNote", "[0].paidProducts", "[0].termsOfUseColor"}},
        {"NothingInThem",
         "never-shown",
         onboarding(R"({"footNote":"","details":[ ],"detailsColor":null,"paidProducts":[]})"),
         {}},
        {"DetailsOfAPaywall", "never-shown", paywall(), {}},
        {"AnOfferOnAPaywallStep", "never-shown", onboarding(), {}},
        {"TheColourOfTheTitleIsNeeded", "never-shown", onboarding(R"({"titleColor":"#FFFFFF"})"), {}},

        {"AName", "unreadable-colour", paywall(R"({"headingColor":"red"})"), {"headingColor"}},
        {"ThreeDigits", "unreadable-colour", paywall(R"({"headingColor":"#FFF"})"), {"headingColor"}},
        {"SevenDigits", "unreadable-colour", paywall(R"({"headingColor":"#FFFFFFF"})"), {"headingColor"}},
        {"TwoSigns",
         "unreadable-colour",
         paywall("{}", R"({"titleColor":"##FF0000"})"),
         {"paidProducts[0].titleColor"}},
        {"TheCloseButtonWithoutColour",
         "unreadable-colour",
         paywall(R"({"exitButtonColor":""})"),
         {"exitButtonColor"}},
        {"OfATag",
         "unreadable-colour",
         paywall("{}", R"({"tagText":"New","tagSelectedColor":"a","tagUnselectedColor":"#000000",
             "tagTextColor":"#FFFFFF"})"),
         {"paidProducts[0].tagSelectedColor"}},
        {"OfAStep",
         "unreadable-colour",
         onboarding("{}", R"({"footNoteColor":"grey"})"),
         {"[1].footNoteColor"}},
        {"EveryForm",
         "unreadable-colour",
         paywall(R"({"headingColor":"ffffff","detailsColor":" #FFFFFFFF\n","exitButtonColor":"<absent>"})"),
         {}},
        {"OfATagThatIsNotThere",
         "unreadable-colour",
         paywall("{}", R"({"tagText":"","tagTextColor":"red"})"),
         {}},
        {"OfATitleThatHasAnother", "unreadable-colour", onboarding(R"({"titleColor":"red"})"), {}},
        {"OfWhatABasicStepDoesNotShow", "unreadable-colour", onboarding(R"({"footNoteColor":"red"})"), {}},
        {"ABlankOneIsMissing", "unreadable-colour", paywall(R"({"headingColor":" "})"), {}},

        {"ALetterAtTheEnd",
         "stray-characters-in-colour",
         paywall(R"({"exitButtonColor":"12345G"})"),
         {"exitButtonColor"}},
        {"APrefix",
         "stray-characters-in-colour",
         paywall(R"({"exitButtonColor":"0x1234"})"),
         {"exitButtonColor"}},
        {"ASpaceInside",
         "stray-characters-in-colour",
         paywall(R"({"exitButtonColor":"#FF 000"})"),
         {"exitButtonColor"}},
        {"OnlyDigits", "stray-characters-in-colour", paywall(R"({"exitButtonColor":" #AbCdEf09 "})"), {}},
        {"AnUnreadableOne", "stray-characters-in-colour", paywall(R"({"exitButtonColor":"green"})"), {}},

        {"OfABadge",
         "missing-colour",
         paywall("{}", R"({"badgeText":"New","badgeSelectedColor":"#FFFFFF"})"),
         {"paidProducts[0].badgeUnselectedColor", "paidProducts[0].badgeTextColor"}},
        {"OfADescription",
         "missing-colour",
         paywall("{}", R"({"descriptionText":"Small","descriptionTextColor":" "})"),
         {"paidProducts[0].descriptionTextColor"}},
        {"OnAPaywallStep",
         "missing-colour",
         onboarding("{}", "{}", R"({"descriptionText":"Small"})"),
         {"[1].paidProducts[0].descriptionTextColor"}},
        {"OfNothing", "missing-colour", paywall("{}", R"({"badgeText":"","tagText":null})"), {}},
        {"AllThere",
         "missing-colour",
         paywall("{}", R"({"tagText":"New","tagSelectedColor":"#000000","tagUnselectedColor":"#000000",
             "tagTextColor":"#FFFFFF"})"),
         {}},

        {"AHeading", "low-contrast", paywall(R"({"headingColor":"#15171A"})"), {"headingColor"}},
        {"DetailLines", "low-contrast", paywall(R"({"detailsColor":"#303236"})"), {"detailsColor"}},
        {"AFootNoteThatIsAlmostTransparent",
         "low-contrast",
         paywall(R"({"footNoteColor":"#FFFFFF18"})"),
         {"footNoteColor"}},
        {"EachLink",
         "low-contrast",
         paywall(
             R"({"termsOfUseColor":"#222222","restoreButtonColor":"#222222","privacyPolicyColor":"#222222"})"),
         {"termsOfUseColor", "privacyPolicyColor", "restoreButtonColor"}},
        {"AButtonOnBothEndsOfItsGradient",
         "low-contrast",
         paywall(R"({"buttonTitleColor":"#FFFFFF"})"),
         {"buttonTitleColor", "buttonTitleColor"}},
        {"AButtonOnOneEndOfItsGradient",
         "low-contrast",
         paywall(R"({"actionButtonColor2":"#101010"})"),
         {"buttonTitleColor"}},
        {"APriceWhileItIsSelected",
         "low-contrast",
         paywall("{}", R"({"selectedBackgroundColor":"#FFFFFF"})"),
         {"paidProducts[0].titleColor", "paidProducts[0].priceColor"}},
        {"ABadge",
         "low-contrast",
         paywall("{}", R"({"badgeText":"New","badgeSelectedColor":"#FFFF00","badgeUnselectedColor":"#000000",
             "badgeTextColor":"#FFFFFF"})"),
         {"paidProducts[0].badgeTextColor"}},
        {"JustBelowThreeToOne",
         "low-contrast",
         paywall("{}", R"({"badgeText":"New","badgeSelectedColor":"#FFFFFF","badgeUnselectedColor":"#FFFFFF",
             "badgeTextColor":"#959595"})"),
         {"paidProducts[0].badgeTextColor", "paidProducts[0].badgeTextColor"}},
        {"JustAboveThreeToOne",
         "low-contrast",
         paywall("{}", R"({"badgeText":"New","badgeSelectedColor":"#FFFFFF","badgeUnselectedColor":"#FFFFFF",
             "badgeTextColor":"#949494"})"),
         {}},
        {"ATagThatLetsTheCardThrough",
         "low-contrast",
         paywall("{}", R"({"tagText":"New","tagSelectedColor":"#FFFFFF10","tagUnselectedColor":"#FFFFFF10",
             "tagTextColor":"#2B3038"})"),
         {"paidProducts[0].tagTextColor", "paidProducts[0].tagTextColor"}},
        {"ATitleOfAStep", "low-contrast", onboarding(R"({"headingColor":"#333333"})"), {"[0].headingColor"}},
        {"WhiteDotsOnWhite",
         "low-contrast",
         onboarding(R"({"backgroundColor":"#FFFFFF","headingColor":"#000000"})"),
         {"[0].backgroundColor"}},
        {"TheDotOfASingleStep", "low-contrast", "[{\"type\":\"basic\",\"backgroundColor\":\"#FFFFFF\"}]", {}},
        {"AnUnreadableColourIsNotCompared",
         "low-contrast",
         paywall(R"({"headingColor":"black","backgroundColor":"#000000"})"),
         {}},
        {"ATextThatIsNotThere",
         "low-contrast",
         paywall("{}", R"({"badgeText":"","badgeSelectedColor":"#FFFFFF","badgeUnselectedColor":"#FFFFFF",
             "badgeTextColor":"#FFFFFF"})"),
         {}},
        {"ABackgroundThatLetsTheUnknownThrough",
         "low-contrast",
         paywall(R"({"backgroundColor":"#15171A00","headingColor":"#FFFFFF"})"),
         {}},
        {"TheLinksOfABasicStep", "low-contrast", onboarding(R"({"termsOfUseColor":"#15171A"})"), {}},

        {"APathAlone", "unreadable-address", paywall(R"({"media":"/media/waves.mp4"})"), {"media"}},
        {"ASpaceInAnAddress",
         "unreadable-address",
         paywall(R"({"termsOfUse":"https://example.com/a b"})"),
         {"termsOfUse"}},
        {"AHostAlone",
         "unreadable-address",
         onboarding("{}", R"({"privacyPolicy":"example.com"})"),
         {"[1].privacyPolicy"}},
        {"AnAddressThatABasicStepDoesNotOpen", "unreadable-address", onboarding(R"({"termsOfUse":"x"})"), {}},
        {"AnAddressWithAPort",
         "unreadable-address",
         paywall(R"({"media":"https://127.0.0.1:8443/media/a.jpg"})"),
         {}},
        {"ABlankAddressIsMissing", "unreadable-address", paywall(R"({"media":" "})"), {}},

        {"Http", "insecure-address", paywall(R"({"media":"http://example.com/a.jpg"})"), {"media"}},
        {"Ftp", "insecure-address", paywall(R"({"privacyPolicy":"ftp://example.com/a"})"), {"privacyPolicy"}},
        {"HttpsInCapitals", "insecure-address", paywall(R"({"media":"HTTPS://EXAMPLE.COM/A.JPG"})"), {}},
        {"AnUnreadableAddress", "insecure-address", paywall(R"({"media":"example.com"})"), {}},

        {"AnotherProduct",
         "unknown-selected-product",
         paywall(R"({"selectedPaidProduct":"third"})"),
         {"selectedPaidProduct"}},
        {"ASpaceBehind",
         "unknown-selected-product",
         paywall(R"({"selectedPaidProduct":"second "})"),
         {"selectedPaidProduct"}},
        {"OnAStepThatSells",
         "unknown-selected-product",
         onboarding("{}", R"({"selectedPaidProduct":"Second"})"),
         {"[1].selectedPaidProduct"}},
        {"TheFirstProduct", "unknown-selected-product", paywall(R"({"selectedPaidProduct":"first"})"), {}},
        {"WithAnEscapeInside",
         "unknown-selected-product",
         R"({"selectedPaidProduct":"\u0061\/b",
             "paidProducts":[{"identifier":"a/b"}]})",
         {}},
        {"NoProductAtAll", "unknown-selected-product", paywall(R"({"paidProducts":[]})"), {}},

        {"TheSameIdentifier",
         "duplicate-product",
         paywall("{}", R"({"identifier":"second"})"),
         {"paidProducts[1].identifier"}},
        {"ThreeOfThem",
         "duplicate-product",
         R"({"paidProducts":[{"identifier":"a"},{"identifier":"a"},{"identifier":"b"},{"identifier":"a"}]})",
         {"paidProducts[1].identifier", "paidProducts[3].identifier"}},
        {"OnDifferentSteps",
         "duplicate-product",
         R"([{"type":"paywall","paidProducts":[{"identifier":"a"}]},
             {"type":"paywall","paidProducts":[{"identifier":"a"}]}])",
         {}},
        {"BlankOnesAreMissing",
         "duplicate-product",
         R"({"paidProducts":[{"identifier":""},{"identifier":""}]})",
         {}},

        {"ThirtyEightCharacters", "detail-line-cut", paywall(line(38)), {"details[0]"}},
        {"ThirtySevenCharacters", "detail-line-cut", paywall(line(37)), {}},
        {"ThirtySevenCharactersOfFourBytes",
         "detail-line-cut",
         paywall(R"({"details":["😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀😀"]})"),
         {}},
        {"AccentsOfTheirOwn",
         "detail-line-cut",
         paywall("{\"details\":[\"" + std::string(36, 'x') + "e\\u0301\"]}"),
         {}},
        {"OnAStep", "detail-line-cut", onboarding(line(50)), {}},

        {"Below", "negative-delay", paywall(R"({"exitButtonDelay":-1})"), {"exitButtonDelay"}},
        {"BelowOnTheLastStep",
         "negative-delay",
         onboarding("{}", R"({"exitButtonDelay":-3})"),
         {"[1].exitButtonDelay"}},
        {"BelowOnAStepWithoutCloseButton", "negative-delay", onboarding(R"({"exitButtonDelay":-3})"), {}},
        {"Zero", "negative-delay", paywall(R"({"exitButtonDelay":0})"), {}},

        {"MoreThanAMinute", "long-delay", paywall(R"({"exitButtonDelay":61})"), {"exitButtonDelay"}},
        {"Milliseconds",
         "long-delay",
         onboarding("{}", R"({"exitButtonDelay":3000})"),
         {"[1].exitButtonDelay"}},
        {"AMinute", "long-delay", paywall(R"({"exitButtonDelay":60})"), {}},
        {"TheDefault", "long-delay", paywall(), {}},
    };
    return all;
}

class RuleTest : public testing::TestWithParam<RuleCase> {};

TEST_P(RuleTest, FindsEachProblemAndNothingElse) {
    const RuleCase& row = GetParam();
    Paths paths;
    for (const Finding& finding : lint(row.document, row.kind).findings) {
        if (finding.code == row.code) {
            paths.push_back(finding.path.text());
            EXPECT_THAT(finding.message, testing::Not(IsEmpty()));
        }
    }
    EXPECT_EQ(paths, row.paths) << row.document;
}

INSTANTIATE_TEST_SUITE_P(Documents, RuleTest, testing::ValuesIn(cases()), [](const auto& testCase) {
    std::string name;
    bool startsWord = true;
    for (const char letter : std::string(testCase.param.code) + "-" + testCase.param.name) {
        if (letter == '-') {
            startsWord = true;
            continue;
        }
        name += startsWord && letter >= 'a' ? static_cast<char>(letter - 'a' + 'A') : letter;
        startsWord = false;
    }
    return name;
});

TEST(Rules, AreEachTestedWithAndWithoutAProblem) {
    std::set<std::string> with;
    std::set<std::string> without;
    for (const RuleCase& row : cases()) {
        (row.paths.empty() ? without : with).insert(row.code);
    }
    for (const Rule& rule : rules()) {
        EXPECT_TRUE(with.contains(std::string(rule.code))) << rule.code;
        EXPECT_TRUE(without.contains(std::string(rule.code))) << rule.code;
    }
    EXPECT_EQ(with.size(), rules().size()) << "a case has an unknown code";
}

TEST(Rules, HaveUniqueCodes) {
    std::set<std::string_view> codes;
    for (const Rule& rule : rules()) {
        EXPECT_THAT(std::string(rule.code), testing::MatchesRegex("[a-z]+(-[a-z]+)*"));
        EXPECT_TRUE(codes.insert(rule.code).second) << rule.code;
    }
}

TEST(Rules, FindNothingInTheSampleDocuments) {
    for (const std::string& document : {paywall(), onboarding()}) {
        for (const Finding& finding : lint(document).findings) {
            ADD_FAILURE() << finding.code << " " << finding.path.text() << " in " << document;
        }
    }
}

TEST(Rules, QuoteTheNameOnTheErrorScreen) {
    const auto hasMessage = [](const char* code, const char* text) {
        return Contains(AllOf(Field(&Finding::code, code), Field(&Finding::message, HasSubstr(text))));
    };
    EXPECT_THAT(lint("{}").findings, hasMessage("no-products", "\"paidProducts (boş)\""));
    EXPECT_THAT(lint("{}").findings, hasMessage("missing-field", "\"restoreButtonColor\""));
    EXPECT_THAT(lint("[{}]").findings, hasMessage("unknown-type", "\"type (geçersiz)\""));
    EXPECT_THAT(lint(paywall("{}", R"({"title":""})")).findings,
                hasMessage("missing-field", "\"paidProducts[0].title\""));
}

TEST(Rules, DescribeTheEffectOfAMissingField) {
    const auto messagesOf = [](const std::string& document) {
        std::vector<std::string> messages;
        for (const Finding& finding : lint(document).findings) {
            messages.push_back(finding.path.text() + ": " + finding.message);
        }
        return messages;
    };
    EXPECT_THAT(messagesOf(paywall(R"({"heading":"<absent>"})")),
                ElementsAre("heading: missing; an error screen listing \"heading\" replaces the paywall"));
    EXPECT_THAT(messagesOf(paywall("{}", R"({"price":" "})")),
                ElementsAre("paidProducts[0].price: empty; an error screen listing \"paidProducts[0].price\" "
                            "replaces the paywall"));
    EXPECT_THAT(messagesOf(onboarding("{}", R"({"paidProducts":[]})")),
                ElementsAre("[1].paidProducts: no products; an error screen listing \"paidProducts (boş)\" "
                            "replaces this step and ends the onboarding"));
    EXPECT_THAT(messagesOf(onboarding(R"({"type":"Basic"})")),
                ElementsAre("[0].type: must be exactly \"basic\" or \"paywall\"; an error screen listing "
                            "\"type (geçersiz)\" replaces this step and ends the onboarding"));
}

TEST(Rules, DescribeTheEffect) {
    const auto messageOf = [](const std::string& document) {
        const Verdict verdict = lint(document);
        return verdict.findings.empty() ? std::string() : verdict.findings.front().message;
    };
    EXPECT_THAT(messageOf(paywall(R"({"exitButtonColor":"12345G"})")), HasSubstr("drawn as #012345FF"));
    EXPECT_THAT(messageOf(paywall(line(40))),
                HasSubstr("40 characters, cut to \"" + std::string(37, 'x') + "...\""));
    EXPECT_THAT(messageOf(paywall(R"({"headingColor":"#15171A"})")), HasSubstr("1.0:1"));
    EXPECT_THAT(messageOf(paywall(R"({"headingColr":"#15171A"})")),
                HasSubstr("did you mean \"headingColor\"?"));
    EXPECT_THAT(messageOf(paywall(R"({"campaign":"spring"})")), testing::Not(HasSubstr("did you mean")));
}

TEST(Rules, CheckOnlyTheLastOfDuplicateKeys) {
    const std::string twice = paywall();
    const std::string document = R"({"headingColor":"red","media":"nowhere","exitButtonDelay":-1,)" +
                                 twice.substr(1, twice.size() - 2) + R"(,"exitButtonDelay":1})";
    for (const Finding& finding : lint(document).findings) {
        EXPECT_EQ(finding.code, "duplicate-key") << finding.path.text();
    }
    EXPECT_EQ(lint(document).findings.size(), 3U);
}

}  // namespace
}  // namespace vorna::lint
