// SPDX-License-Identifier: Apache-2.0
#include <tools/schemas/GeneratedTables.h>

#include <gmock/gmock.h>

namespace vorna::schemas {
namespace {

using testing::HasSubstr;

TEST(GeneratedTables, ReplaceTheTextBetweenTheMarkers) {
    const std::string before = "a\n<!-- table: paywall -->\nold\n<!-- end of table -->\nb\n";
    const auto after = withGeneratedTables(before);
    ASSERT_TRUE(after);
    EXPECT_THAT(*after, testing::StartsWith("a\n<!-- table: paywall -->\n| field |"));
    EXPECT_THAT(*after, testing::EndsWith("|\n<!-- end of table -->\nb\n"));
    EXPECT_THAT(*after, testing::Not(HasSubstr("old")));
    EXPECT_THAT(*after, HasSubstr("| `exitButtonDelay` | whole number | 3 | no |"));
    EXPECT_THAT(*after, HasSubstr("| `exitButtonColor` | colour | `#ffffff` | no |"));
    EXPECT_THAT(*after, HasSubstr("| `heading` | text | empty | yes |"));
    EXPECT_EQ(withGeneratedTables(*after), after) << "a second time changes nothing";
}

TEST(GeneratedTables, CoverEachRecordAndTheFindings) {
    const auto table = [](const std::string& name) {
        return withGeneratedTables("<!-- table: " + name + " -->\n<!-- end of table -->\n")
            .value_or("absent");
    };
    EXPECT_THAT(table("step"), HasSubstr("| `footNote` | text | empty | on paywall steps |"));
    EXPECT_THAT(table("product"), HasSubstr("| `price` | text | empty | yes |"));
    EXPECT_THAT(table("findings"), HasSubstr("| `not-json` | error |"));
}

TEST(GeneratedTables, KeepOtherText) {
    EXPECT_EQ(withGeneratedTables(""), "");
    EXPECT_EQ(withGeneratedTables("# Title\n\ntext"), "# Title\n\ntext");
}

TEST(GeneratedTables, RejectInvalidMarkers) {
    EXPECT_EQ(withGeneratedTables("<!-- table: other -->\n<!-- end of table -->\n"), std::nullopt);
    EXPECT_EQ(withGeneratedTables("<!-- table: step -->\n"), std::nullopt);
    EXPECT_EQ(withGeneratedTables("<!-- table: step\n<!-- end of table -->\n"), std::nullopt);
}

}  // namespace
}  // namespace vorna::schemas
