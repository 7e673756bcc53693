// SPDX-License-Identifier: Apache-2.0
#include <vorna/documents/PaywallParameters.h>

#include <tests/documents/support/Documents.h>

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace vorna {
namespace {

using test::filledObject;
using test::paywallFields;
using test::sampleProduct;

static_assert(!std::default_initializable<PaywallParameters>);

PaywallParameters samplePaywall() {
    return {"of media",
            "of heading",
            {"a line"},
            {sampleProduct()},
            7,
            "of selectedPaidProduct",
            "of buttonTitle",
            "of termsOfUse",
            "of privacyPolicy",
            "of footNote",
            "of backgroundColor",
            "of actionButtonColor1",
            "of actionButtonColor2",
            "of headingColor",
            "of buttonTitleColor",
            "of termsOfUseColor",
            "of footNoteColor",
            "of restoreButtonColor",
            "of privacyPolicyColor",
            "of detailsColor",
            "of exitButtonColor"};
}

TEST(PaywallParameters, ConstructorTakesAllValuesInTheOrderOfTheDocument) {
    const PaywallParameters paywall = samplePaywall();
    EXPECT_EQ(paywall.media, "of media");
    EXPECT_EQ(paywall.heading, "of heading");
    EXPECT_EQ(paywall.details, std::vector<std::string>{"a line"});
    EXPECT_EQ(paywall.paidProducts, std::vector<PaidProduct>{sampleProduct()});
    EXPECT_EQ(paywall.exitButtonDelay, 7);
    EXPECT_EQ(paywall.selectedPaidProduct, "of selectedPaidProduct");
    EXPECT_EQ(paywall.buttonTitle, "of buttonTitle");
    EXPECT_EQ(paywall.termsOfUse, "of termsOfUse");
    EXPECT_EQ(paywall.privacyPolicy, "of privacyPolicy");
    EXPECT_EQ(paywall.footNote, "of footNote");
    EXPECT_EQ(paywall.backgroundColor, "of backgroundColor");
    EXPECT_EQ(paywall.actionButtonColor1, "of actionButtonColor1");
    EXPECT_EQ(paywall.actionButtonColor2, "of actionButtonColor2");
    EXPECT_EQ(paywall.headingColor, "of headingColor");
    EXPECT_EQ(paywall.buttonTitleColor, "of buttonTitleColor");
    EXPECT_EQ(paywall.termsOfUseColor, "of termsOfUseColor");
    EXPECT_EQ(paywall.footNoteColor, "of footNoteColor");
    EXPECT_EQ(paywall.restoreButtonColor, "of restoreButtonColor");
    EXPECT_EQ(paywall.privacyPolicyColor, "of privacyPolicyColor");
    EXPECT_EQ(paywall.detailsColor, "of detailsColor");
    EXPECT_EQ(paywall.exitButtonColor, "of exitButtonColor");
}

TEST(PaywallParameters, AreEncodedInThatOrderAndRestored) {
    const std::string text = encode(samplePaywall()).value();
    EXPECT_EQ(text, filledObject(paywallFields(), {{"exitButtonDelay", "7"}}));
    EXPECT_EQ(PaywallParameters::decode(text).value(), samplePaywall());
}

TEST(PaywallParameters, DefaultInAnEmptyObject) {
    const auto paywall = PaywallParameters::decode("{}").value();
    EXPECT_EQ(paywall.exitButtonDelay, 3);
    EXPECT_EQ(paywall.exitButtonColor, "#ffffff");
    EXPECT_EQ(paywall.heading, "");
    EXPECT_TRUE(paywall.details.empty());
    EXPECT_TRUE(paywall.paidProducts.empty());
}

TEST(PaywallParameters, MustBeAnObject) {
    for (const char* const text : {"[]", "\"text\"", "null", "7", "true"}) {
        const auto decoded = PaywallParameters::decode(text);
        ASSERT_FALSE(decoded) << text;
        EXPECT_EQ(decoded.error().expected, "an object") << text;
    }
}

TEST(PaywallParameters, CannotBeEncodedWithTextThatIsNotUtf8) {
    PaywallParameters paywall = samplePaywall();
    paywall.paidProducts.push_back(sampleProduct());
    paywall.paidProducts[1].price = "\xFF";
    EXPECT_EQ(json::describe(encode(paywall).error()), "paidProducts[1].price: the text is not UTF-8");
}

struct NumberCase {
    const char* name;
    const char* text;
    std::optional<std::int64_t> number;
    const char* found = "";
};

class ExitButtonDelay : public testing::TestWithParam<NumberCase> {};

TEST_P(ExitButtonDelay, IsAnIntegerInAnyNotation) {
    const std::string text = std::string(R"({"exitButtonDelay":)") + GetParam().text + "}";
    const auto decoded = PaywallParameters::decode(text);
    if (GetParam().number) {
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded.value().exitButtonDelay, GetParam().number);
    } else {
        ASSERT_FALSE(decoded);
        const auto& error = decoded.error();
        EXPECT_EQ(json::describe(error),
                  std::string("exitButtonDelay: expected a 64-bit integer, found ") + GetParam().found);
    }
}

constexpr auto least = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();

INSTANTIATE_TEST_SUITE_P(
    Cases, ExitButtonDelay,
    testing::Values(
        NumberCase{"Plain", "5", 5}, NumberCase{"Zero", "0", 0}, NumberCase{"MinusZero", "-0", 0},
        NumberCase{"MinusZeroWithFraction", "-0.0", 0}, NumberCase{"Negative", "-5", -5},
        NumberCase{"ZeroFraction", "5.0", 5}, NumberCase{"LongZeroFraction", "5.000000000000000000000000", 5},
        NumberCase{"ZeroExponent", "5e0", 5}, NumberCase{"ZeroFractionAndExponent", "5.00e0", 5},
        NumberCase{"Exponent", "5E+2", 500}, NumberCase{"FractionThatTheExponentTakes", "0.5e1", 5},
        NumberCase{"NegativeExponent", "50e-1", 5}, NumberCase{"Null", "null", 3},
        NumberCase{"Largest", "9223372036854775807", most},
        NumberCase{"Smallest", "-9223372036854775808", least},
        NumberCase{"SmallestWithFraction", "-9223372036854775808.0", std::nullopt,
                   "the number -9223372036854775808.0"},
        NumberCase{"OneTooLarge", "9223372036854775808", std::nullopt, "the number 9223372036854775808"},
        NumberCase{"OneTooSmall", "-9223372036854775809", std::nullopt, "the number -9223372036854775809"},
        NumberCase{"LargestUnsigned", "18446744073709551615", std::nullopt,
                   "the number 18446744073709551615"},
        NumberCase{"TooLargeWithFraction", "9223372036854775808.0", std::nullopt,
                   "the number 9223372036854775808.0"},
        NumberCase{"Huge", "1e300", std::nullopt, "the number 1e300"},
        NumberCase{"VeryManyDigits", "1234567890123456789012345678901234567890123", std::nullopt,
                   "the number 1234567890123456789012345678901234567890..."},
        NumberCase{"Fraction", "5.5", std::nullopt, "the number 5.5"},
        NumberCase{"FractionByExponent", "5e-1", std::nullopt, "the number 5e-1"},
        NumberCase{"SmallFraction", "0.000001", std::nullopt, "the number 0.000001"},
        NumberCase{"Text", "\"5\"", std::nullopt, "a string"},
        NumberCase{"Boolean", "true", std::nullopt, "a boolean"},
        NumberCase{"Array", "[5]", std::nullopt, "an array"},
        NumberCase{"Object", "{}", std::nullopt, "an object"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(ExitButtonDelay, IgnoresTrailingZerosOfTheFraction) {
    for (std::int64_t seconds = 0; seconds <= 2000; ++seconds) {
        for (const char* const end : {".0", ".00", ".000000", "e0", ".000E0"}) {
            const std::string text = R"({"exitButtonDelay":)" + std::to_string(seconds) + end + "}";
            const auto decoded = PaywallParameters::decode(text);
            ASSERT_TRUE(decoded) << text;
            ASSERT_EQ(decoded.value().exitButtonDelay, seconds) << text;
        }
    }
}

}  // namespace
}  // namespace vorna
