// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/ShellAssignments.h>

#include <gtest/gtest.h>

#include <array>
#include <ostream>

namespace vorna {
namespace {

struct Row {
    const char* name;
    std::string_view contents;
    std::optional<std::string> value;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

class AssignedValue : public testing::TestWithParam<Row> {};

TEST_P(AssignedValue, IsTheValueInAShell) {
    EXPECT_EQ(assignedValue(GetParam().contents, "KEY"), GetParam().value);
}

const auto rows = std::to_array<Row>({
    {"Bare", "KEY=12\n", "12"},
    {"WithoutEndOfLine", "KEY=12", "12"},
    {"DoubleQuotes", "KEY=\"12.4 (Long)\"\n", "12.4 (Long)"},
    {"SingleQuotes", "KEY='12.4 (Long)'\n", "12.4 (Long)"},
    {"AmongOthers", "NAME=x\nKEY=12\nOTHER=13\n", "12"},
    {"LastOneCounts", "KEY=11\nKEY=12\n", "12"},
    {"NamesAreWhole", "MYKEY=1\nKEY_ID=2\nKEYS=3\n", std::nullopt},
    {"Comment", "#KEY=12\n  # KEY=13\n", std::nullopt},
    {"SpaceBeforeTheName", "  KEY=12\n", "12"},
    {"SpaceAfterTheValue", "KEY=12 \t\r\n", "12"},
    {"SpaceInsideQuotesStays", "KEY=\" 12 \"\n", " 12 "},
    {"ValueWithEqualsSign", "KEY=a=b\n", "a=b"},
    {"EscapedQuote", "KEY=\"the \\\"best\\\" one\"\n", "the \"best\" one"},
    {"EscapedDollarAndBackquote", "KEY=\"\\$5 \\`x\\`\"\n", "$5 `x`"},
    {"EscapedBackslash", "KEY=\"a\\\\b\"\n", "a\\b"},
    {"BackslashThatEscapesNothingStays", "KEY=\"a\\nb\"\n", "a\\nb"},
    {"BackslashInSingleQuotesStays", "KEY='a\\b'\n", "a\\b"},
    {"BackslashOutsideQuotes", "KEY=a\\ b\\'c\n", "a b'c"},
    {"OtherQuoteInsideQuotes", "KEY=\"Lennart's\"\n", "Lennart's"},
    {"NothingIsExpanded", "KEY=\"$HOME\"\n", "$HOME"},
    {"QuoteWithoutEnd", "KEY=\"12\nOTHER=1\n", "12"},
    {"BackslashAtTheEnd", "KEY=12\\\n", "12\\"},
    {"Empty", "KEY=\n", std::nullopt},
    {"EmptyQuotes", "KEY=\"\"\n", std::nullopt},
    {"EmptiedLater", "KEY=12\nKEY=\n", std::nullopt},
    {"EmptyFile", "", std::nullopt},
    {"NoEqualsSign", "KEY\n", std::nullopt},
    {"Umlauts", "KEY=\"B\xC3\xBCro\"\n", "B\xC3\xBCro"},
});

INSTANTIATE_TEST_SUITE_P(Rows, AssignedValue, testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace vorna
