// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/TextArgument.h>

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace vorna {
namespace {

using Text = std::optional<std::string_view>;

Text textOf(TextArgument argument) {
    return argument.text();
}

/// A host's own kind of text.
struct Label {
    std::string text;

    // NOLINTNEXTLINE(google-explicit-constructor): the point of it
    operator std::string_view() const { return text; }
};

TEST(TextArgument, IsAnythingThatConvertsToAView) {
    std::array<char, 4> buffer = {'d', 'e', 'f', 0};
    char* const pointer = buffer.data();
    const char array[] = "abc";  // NOLINT(modernize-avoid-c-arrays): one of the cases
    EXPECT_EQ(textOf("abc"), "abc");
    EXPECT_EQ(textOf(array), "abc");
    EXPECT_EQ(textOf(pointer), "def");
    EXPECT_EQ(textOf(static_cast<const char*>(pointer)), "def");
    EXPECT_EQ(textOf(std::string("abc")), "abc");
    EXPECT_EQ(textOf(std::string_view("abc")), "abc");
    EXPECT_EQ(textOf(Label{"abc"}), "abc");
    EXPECT_EQ(textOf({"abcdef", 3}), "abc");
    EXPECT_EQ(textOf(std::string("a\0b", 3)), std::string_view("a\0b", 3));
}

TEST(TextArgument, IsTheValueOfAnOptional) {
    EXPECT_EQ(textOf(std::optional<std::string>("abc")), "abc");
    EXPECT_EQ(textOf(std::optional<std::string_view>("abc")), "abc");
    EXPECT_EQ(textOf(std::optional<const char*>("abc")), "abc");
}

TEST(TextArgument, MayBeMissing) {
    const char* const none = nullptr;
    char* const noneEither = nullptr;
    EXPECT_EQ(textOf(nullptr), std::nullopt);
    EXPECT_EQ(textOf(none), std::nullopt);
    EXPECT_EQ(textOf(noneEither), std::nullopt);
    EXPECT_EQ(textOf(std::nullopt), std::nullopt);
    EXPECT_EQ(textOf({}), std::nullopt);
    EXPECT_EQ(textOf(std::optional<std::string>()), std::nullopt);
    EXPECT_EQ(textOf(std::optional<std::string_view>()), std::nullopt);
    EXPECT_EQ(textOf(std::optional<const char*>(nullptr)), std::nullopt);
}

TEST(TextArgument, IsPresentIfItIsEmpty) {
    EXPECT_EQ(textOf(""), "");
    EXPECT_EQ(textOf(std::string()), "");
    EXPECT_EQ(textOf(std::string_view()), "");
    EXPECT_EQ(textOf(std::optional<std::string_view>(std::string_view())), "");
}

TEST(TextArgument, IsNothingElse) {
    static_assert(!std::is_convertible_v<int, TextArgument>);
    static_assert(!std::is_convertible_v<char, TextArgument>);
    static_assert(!std::is_convertible_v<bool, TextArgument>);
    static_assert(!std::is_convertible_v<const void*, TextArgument>);
    static_assert(!std::is_convertible_v<std::optional<int>, TextArgument>);
    static_assert(std::is_trivially_copyable_v<TextArgument>);
    static_assert(sizeof(TextArgument) == sizeof(std::string_view));
    constexpr TextArgument constant = "abc";
    static_assert(constant.text() == "abc");
}

}  // namespace
}  // namespace vorna
