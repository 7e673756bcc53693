// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/Utf8.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vorna {
namespace {

using namespace std::string_view_literals;

struct Utf8Case {
    const char* name;
    std::string_view text;
    bool valid;
    std::string_view repaired;
};

class Utf8Text : public testing::TestWithParam<Utf8Case> {};

TEST_P(Utf8Text, IsCheckedAndRepaired) {
    EXPECT_EQ(utf8::isValid(GetParam().text), GetParam().valid);
    EXPECT_EQ(utf8::repaired(GetParam().text), GetParam().repaired);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Utf8Text,
    testing::Values(
        Utf8Case{"Empty", ""sv, true, ""sv}, Utf8Case{"Ascii", "level_up"sv, true, "level_up"sv},
        Utf8Case{"NulByte", "a\0b"sv, true, "a\0b"sv},
        Utf8Case{"Turkish", "Eksik alanlar: ığüşöç"sv, true, "Eksik alanlar: ığüşöç"sv},
        Utf8Case{"Emoji", "✅ 👩‍👩‍👧"sv, true, "✅ 👩‍👩‍👧"sv},
        Utf8Case{"LastCodePoint", "\xF4\x8F\xBF\xBF"sv, true, "\xF4\x8F\xBF\xBF"sv},
        Utf8Case{"BeyondLastCodePoint", "\xF4\x90\x80\x80"sv, false, "\uFFFD\uFFFD\uFFFD\uFFFD"sv},
        Utf8Case{"LoneContinuation", "a\x80z"sv, false, "a\uFFFDz"sv},
        Utf8Case{"Overlong", "\xC0\xAF"sv, false, "\uFFFD\uFFFD"sv},
        Utf8Case{"Surrogate", "\xED\xA0\x80"sv, false, "\uFFFD\uFFFD\uFFFD"sv},
        Utf8Case{"CutOffAtTheEnd", "ab\xE2\x9C"sv, false, "ab\uFFFD\uFFFD"sv},
        Utf8Case{"BadAfterLongAscii", "0123456789abcdefghij\xFF"sv, false, "0123456789abcdefghij\uFFFD"sv}),
    [](const auto& testCase) { return testCase.param.name; });

}  // namespace
}  // namespace vorna
