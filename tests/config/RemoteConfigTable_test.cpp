// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigTable.h>

#include <tests/support/ConfigTables.h>

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vorna {
namespace {

using Configs = std::map<std::string, std::string>;
using support::tableOf;

TEST(RemoteConfigTable, IsEmptyWithoutEntries) {
    EXPECT_EQ(RemoteConfigTable().find("key"), std::nullopt);
    const RemoteConfigTable made = tableOf({});
    EXPECT_EQ(made.size(), 0U);
    EXPECT_EQ(made.find(""), std::nullopt);
}

TEST(RemoteConfigTable, FindsExactlyItsKeys) {
    const RemoteConfigTable table = tableOf({{"ab", "c"}, {"a", "bc"}, {"Key", "1"}, {"key", "2"}});
    EXPECT_EQ(table.size(), 4U);
    EXPECT_EQ(table.find("ab"), "c");
    EXPECT_EQ(table.find("a"), "bc");
    EXPECT_EQ(table.find("Key"), "1");
    EXPECT_EQ(table.find("key"), "2");
    EXPECT_EQ(table.find("KEY"), std::nullopt);
    EXPECT_EQ(table.find("abc"), std::nullopt);
    EXPECT_EQ(table.find(""), std::nullopt);
}

TEST(RemoteConfigTable, DistinguishesEmptyTextFromNone) {
    const RemoteConfigTable table = tableOf({{"", "nameless"}, {"empty", ""}});
    EXPECT_EQ(table.find(""), "nameless");
    EXPECT_EQ(table.find("empty"), "");
    EXPECT_EQ(table.find("none"), std::nullopt);
}

TEST(RemoteConfigTable, KeepsZeroBytesInKeysAndValues) {
    const std::string zero("a\0b", 3);
    const RemoteConfigTable table = tableOf({{zero, zero}, {"a", "short"}});
    EXPECT_EQ(table.find(zero), zero);
    EXPECT_EQ(table.find("a"), "short");
}

TEST(RemoteConfigTable, FindsEachOfAHundredThousandKeysAndNoOther) {
    Configs configs;
    for (int index = 0; index < 100'000; ++index) {
        configs.emplace("key_" + std::to_string(index), "value " + std::to_string(index));
    }
    const RemoteConfigTable table = tableOf(configs);
    ASSERT_EQ(table.size(), configs.size());
    for (const auto& [key, value] : configs) {
        ASSERT_EQ(table.find(key), value) << key;
        ASSERT_EQ(table.find(key + "_"), std::nullopt) << key;
    }
}

TEST(RemoteConfigTable, UsesTheLastOfDuplicateKeys) {
    RemoteConfigTableEntries entries;
    entries.add("a", "1");
    entries.add("b", "2");
    entries.add("a", "3");
    const RemoteConfigTable table(std::move(entries));
    EXPECT_EQ(table.size(), 2U);
    EXPECT_EQ(table.find("a"), "3");
    EXPECT_EQ(support::entriesOf(table), (Configs{{"a", "3"}, {"b", "2"}}));
}

TEST(RemoteConfigTable, ForgetsEntriesThatAreCleared) {
    RemoteConfigTableEntries entries;
    entries.add("a", "1");
    entries.clear();
    entries.add("b", "2");
    const RemoteConfigTable table(std::move(entries));
    EXPECT_EQ(support::entriesOf(table), (Configs{{"b", "2"}}));
}

TEST(RemoteConfigTable, VisitsEachEntryOnce) {
    Configs configs;
    for (int index = 0; index < 1'000; ++index) {
        configs.emplace("key_" + std::to_string(index), std::string(static_cast<std::size_t>(index), 'v'));
    }
    std::size_t visits = 0;
    const RemoteConfigTable table = tableOf(configs);
    table.forEach([&visits](std::string_view, std::string_view) { ++visits; });
    EXPECT_EQ(visits, configs.size());
    EXPECT_TRUE(support::entriesOf(table) == configs);
}

}  // namespace
}  // namespace vorna
