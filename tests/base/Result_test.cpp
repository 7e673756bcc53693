// SPDX-License-Identifier: Apache-2.0
#include <vorna/base/Result.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace vorna {
namespace {

Result<int, std::string> half(int number) {
    if (number % 2 != 0) {
        return Unexpected(std::string("odd"));
    }
    return number / 2;
}

TEST(ResultTest, HoldsAValue) {
    const Result<int, std::string> result = half(4);

    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(*result, 2);
    EXPECT_EQ(result.value_or(7), 2);
}

TEST(ResultTest, HoldsAnError) {
    const Result<int, std::string> result = half(3);

    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), "odd");
    EXPECT_EQ(result.value_or(7), 7);
}

TEST(ResultTest, DistinguishesAValueFromAnErrorOfTheSameType) {
    const Result<std::string, std::string> value = std::string("text");
    const Result<std::string, std::string> error = Unexpected(std::string("text"));

    EXPECT_TRUE(value.has_value());
    EXPECT_FALSE(error.has_value());
    EXPECT_NE(value, error);
}

TEST(ResultTest, OfVoidHoldsOnlySuccess) {
    const Result<void, int> success;
    const Result<void, int> failure = Unexpected(5);

    EXPECT_TRUE(success.has_value());
    EXPECT_EQ(failure.error(), 5);
}

TEST(ResultTest, MovesValuesThatCannotBeCopied) {
    Result<std::unique_ptr<int>, std::string> result = std::make_unique<int>(5);

    const std::unique_ptr<int> taken = *std::move(result);

    EXPECT_EQ(*taken, 5);
}

TEST(ResultTest, GivesAccessToMembers) {
    Result<std::vector<int>, std::string> result = std::vector<int>{1};

    result->push_back(2);

    EXPECT_EQ(result->size(), 2U);
}

TEST(ResultTest, ContinuesWithAValueButNotWithAnError) {
    EXPECT_EQ(half(8).and_then(half), (Result<int, std::string>(2)));
    EXPECT_EQ(half(6).and_then(half).error(), "odd");
    EXPECT_EQ(half(5).and_then(half).error(), "odd");
}

TEST(ResultTest, TransformsOnlyTheError) {
    const auto size = [](const std::string& error) { return error.size(); };

    EXPECT_EQ(half(4).transform_error(size).value(), 2);
    EXPECT_EQ(half(5).transform_error(size).error(), 3U);
}

TEST(ResultDeathTest, AbortsOnAccessToTheAbsentAlternative) {
    EXPECT_DEATH(static_cast<void>(half(3).value()), "");
    EXPECT_DEATH(static_cast<void>(half(4).error()), "");
}

}  // namespace
}  // namespace vorna
