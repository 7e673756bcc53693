// SPDX-License-Identifier: Apache-2.0
#include <vorna/json/DecodingError.h>
#include <vorna/json/EncodingError.h>

#include <gtest/gtest.h>

#include <string>

namespace vorna::json {
namespace {

const Path price{"paidProducts", 1U, "price"};

TEST(DecodingErrorText, HasPathExpectedAndFound) {
    const DecodingError error{7, price, "a string", Kind::number};
    EXPECT_EQ(describe(error), "paidProducts[1].price: expected a string, found a number");
}

TEST(DecodingErrorText, BeginsWithThePositionInTheGivenText) {
    const DecodingError error{9, price, "a string", Kind::number};
    EXPECT_EQ(describe(error, "{\n \"ğ\": 7}"),
              "line 2, column 7: paidProducts[1].price: expected a string, found a number");
    EXPECT_EQ(
        describe({.offset = 0, .expected = "JSON", .found = DecodingError::Malformed{"incomplete"}}, ""),
        "line 1, column 1: incomplete");
}

TEST(DecodingErrorText, HasNoPositionWithoutAnOffset) {
    const DecodingError error{std::nullopt, price, "a string", Kind::null};
    EXPECT_EQ(describe(error, "{}"), "paidProducts[1].price: expected a string, found null");
}

TEST(DecodingErrorText, HasNoPathAtTheTop) {
    EXPECT_EQ(describe({.expected = "an object", .found = Kind::array}),
              "expected an object, found an array");
}

TEST(DecodingErrorText, ReportsAMissingKey) {
    EXPECT_EQ(describe({.path = price, .expected = "a value"}), "paidProducts[1].price: missing");
}

TEST(DecodingErrorText, ShowsTheFirstDigitsOfANumber) {
    const auto textOf = [](const std::string& digits) {
        return describe({.expected = "a 64-bit integer", .found = DecodingError::Number{digits}});
    };
    EXPECT_EQ(textOf("5.5"), "expected a 64-bit integer, found the number 5.5");
    EXPECT_EQ(textOf(std::string(40, '1')),
              "expected a 64-bit integer, found the number " + std::string(40, '1'));
    EXPECT_EQ(textOf(std::string(41, '1')),
              "expected a 64-bit integer, found the number " + std::string(40, '1') + "...");
}

TEST(EncodingErrorText, HasPathAndReason) {
    EXPECT_EQ(describe({price, EncodingError::Reason::notUtf8}),
              "paidProducts[1].price: the text is not UTF-8");
    EXPECT_EQ(describe({Path{}, EncodingError::Reason::notFinite}), "JSON cannot represent the number");
}

}  // namespace
}  // namespace vorna::json
