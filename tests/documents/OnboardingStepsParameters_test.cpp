// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/OnboardingStepsParameters.h>

#include <tests/documents/support/Documents.h>

#include <gtest/gtest.h>

#include <concepts>
#include <string>
#include <vector>

namespace vorna {
namespace {

using test::filledObject;
using test::onboardingStepFields;
using test::sampleProduct;
using test::wholeObject;
using Steps = std::vector<OnboardingStepsParameters>;

static_assert(!std::default_initializable<OnboardingStepsParameters>);

OnboardingStepsParameters sampleStep() {
    return {"paywall",
            "of media",
            "of heading",
            {"a line"},
            "of buttonTitle",
            {sampleProduct()},
            "of selectedPaidProduct",
            7,
            "of termsOfUse",
            "of privacyPolicy",
            "of title",
            "of footNote",
            "of backgroundColor",
            "of actionButtonColor1",
            "of actionButtonColor2",
            "of detailsColor",
            "of titleColor",
            "of headingColor",
            "of buttonTitleColor",
            "of termsOfUseColor",
            "of footNoteColor",
            "of restoreButtonColor",
            "of privacyPolicyColor",
            "of exitButtonColor"};
}

std::string problemOf(const std::string& text) {
    const auto decoded = decodeOnboardingSteps(text);
    return decoded ? "none" : json::describe(decoded.error(), text);
}

TEST(OnboardingStepsParameters, ConstructorTakesAllValuesInItsOwnOrder) {
    const OnboardingStepsParameters step = sampleStep();
    EXPECT_EQ(step.type, "paywall");
    EXPECT_EQ(step.media, "of media");
    EXPECT_EQ(step.title, "of title");
    EXPECT_EQ(step.titleColor, "of titleColor");
    EXPECT_EQ(step.heading, "of heading");
    EXPECT_EQ(step.headingColor, "of headingColor");
    EXPECT_EQ(step.details, std::vector<std::string>{"a line"});
    EXPECT_EQ(step.detailsColor, "of detailsColor");
    EXPECT_EQ(step.buttonTitle, "of buttonTitle");
    EXPECT_EQ(step.buttonTitleColor, "of buttonTitleColor");
    EXPECT_EQ(step.termsOfUse, "of termsOfUse");
    EXPECT_EQ(step.termsOfUseColor, "of termsOfUseColor");
    EXPECT_EQ(step.footNote, "of footNote");
    EXPECT_EQ(step.footNoteColor, "of footNoteColor");
    EXPECT_EQ(step.paidProducts, std::vector<PaidProduct>{sampleProduct()});
    EXPECT_EQ(step.selectedPaidProduct, "of selectedPaidProduct");
    EXPECT_EQ(step.exitButtonDelay, 7);
    EXPECT_EQ(step.privacyPolicy, "of privacyPolicy");
    EXPECT_EQ(step.backgroundColor, "of backgroundColor");
    EXPECT_EQ(step.actionButtonColor1, "of actionButtonColor1");
    EXPECT_EQ(step.actionButtonColor2, "of actionButtonColor2");
    EXPECT_EQ(step.restoreButtonColor, "of restoreButtonColor");
    EXPECT_EQ(step.privacyPolicyColor, "of privacyPolicyColor");
    EXPECT_EQ(step.exitButtonColor, "of exitButtonColor");
}

TEST(OnboardingStepsParameters, IsEncodedInTheOrderOfTheDocumentAndRestored) {
    const std::string text = encode(sampleStep()).value();
    EXPECT_EQ(text, filledObject(onboardingStepFields(), {{"exitButtonDelay", "7"}}));
    EXPECT_EQ(decodeOnboardingSteps("[" + text + "]").value(), Steps{sampleStep()});
}

TEST(OnboardingStepsParameters, AllowsChangingTheColourOfItsTerms) {
    OnboardingStepsParameters step = sampleStep();
    step.termsOfUseColor = "#000000";
    EXPECT_NE(step, sampleStep());
}

TEST(OnboardingSteps, KeepTheirOrder) {
    const auto steps = decodeOnboardingSteps(R"([{"type":"basic"},{"type":"paywall"},{}])").value();
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[0].type, "basic");
    EXPECT_EQ(steps[1].type, "paywall");
    EXPECT_EQ(steps[2].type, "");
}

TEST(OnboardingSteps, AreEncodedAsAnArrayAndRestored) {
    const Steps steps(2, sampleStep());
    const std::string text = encode(steps).value();
    const std::string one = encode(sampleStep()).value();
    EXPECT_EQ(text, "[" + one + "," + one + "]");
    EXPECT_EQ(decodeOnboardingSteps(text).value(), steps);
    EXPECT_EQ(encode(Steps{}).value(), "[]");
}

TEST(OnboardingSteps, MayBeEmpty) {
    EXPECT_TRUE(decodeOnboardingSteps(" [ ] ").value().empty());
}

TEST(OnboardingSteps, DefaultInEmptyObjects) {
    const Steps steps = decodeOnboardingSteps("[{}]").value();
    ASSERT_EQ(steps.size(), 1U);
    EXPECT_EQ(steps[0].exitButtonDelay, 3);
    EXPECT_EQ(steps[0].exitButtonColor, "#ffffff");
    EXPECT_EQ(encode(steps[0]).value(), wholeObject(onboardingStepFields()));
}

TEST(OnboardingSteps, MustBeAnArrayOfObjects) {
    EXPECT_EQ(problemOf("{}"), "line 1, column 1: expected an array, found an object");
    EXPECT_EQ(problemOf("null"), "line 1, column 1: expected an array, found null");
    EXPECT_EQ(problemOf("[{}, []]"), "line 1, column 6: [1]: expected an object, found an array");
    EXPECT_EQ(problemOf("[null]"), "line 1, column 2: [0]: expected an object, found null");
    EXPECT_EQ(problemOf("[{},\n 7]"), "line 2, column 2: [1]: expected an object, found a number");
}

TEST(OnboardingSteps, FailForOneWrongValueInOneStep) {
    EXPECT_EQ(problemOf(R"([{}, {}, {"type":7}])"),
              "line 1, column 18: [2].type: expected a string, found a number");
    EXPECT_EQ(problemOf(R"([{"exitButtonDelay":"5"}])"),
              "line 1, column 21: [0].exitButtonDelay: expected a 64-bit integer, found a string");
    EXPECT_EQ(problemOf(R"([{"paidProducts":[{},{"price":null},{"price":[]}]}])"),
              "line 1, column 46: [0].paidProducts[2].price: expected a string, found an array");
    EXPECT_EQ(problemOf(R"([{"details":["a",null]}])"),
              "line 1, column 18: [0].details[1]: expected a string, found null");
}

TEST(OnboardingSteps, DistinguishADelayOfZeroFromNone) {
    EXPECT_EQ(decodeOnboardingSteps(R"([{"exitButtonDelay":0}])").value()[0].exitButtonDelay, 0);
    EXPECT_EQ(decodeOnboardingSteps(R"([{"exitButtonDelay":null}])").value()[0].exitButtonDelay, 3);
}

}  // namespace
}  // namespace vorna
