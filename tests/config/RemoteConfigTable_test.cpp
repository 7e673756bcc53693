// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigTable.h>

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace vorna {
namespace {

using Configs = std::map<std::string, std::string>;

TEST(RemoteConfigTable, IsEmptyWithoutEntries) {
    EXPECT_EQ(RemoteConfigTable().find("key"), std::nullopt);
    const RemoteConfigTable made(Configs{});
    EXPECT_EQ(made.size(), 0U);
    EXPECT_EQ(made.find(""), std::nullopt);
}

TEST(RemoteConfigTable, FindsExactlyItsKeys) {
    const RemoteConfigTable table(Configs{{"ab", "c"}, {"a", "bc"}, {"Key", "1"}, {"key", "2"}});
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
    const RemoteConfigTable table(Configs{{"", "nameless"}, {"empty", ""}});
    EXPECT_EQ(table.find(""), "nameless");
    EXPECT_EQ(table.find("empty"), "");
    EXPECT_EQ(table.find("none"), std::nullopt);
}

TEST(RemoteConfigTable, KeepsZeroBytesInKeysAndValues) {
    const std::string zero("a\0b", 3);
    const RemoteConfigTable table(Configs{{zero, zero}, {"a", "short"}});
    EXPECT_EQ(table.find(zero), zero);
    EXPECT_EQ(table.find("a"), "short");
}

TEST(RemoteConfigTable, FindsEachOfAHundredThousandKeysAndNoOther) {
    Configs configs;
    for (int index = 0; index < 100'000; ++index) {
        configs.emplace("key_" + std::to_string(index), "value " + std::to_string(index));
    }
    const RemoteConfigTable table(configs);
    ASSERT_EQ(table.size(), configs.size());
    for (const auto& [key, value] : configs) {
        ASSERT_EQ(table.find(key), value) << key;
        ASSERT_EQ(table.find(key + "_"), std::nullopt) << key;
    }
}

TEST(RemoteConfigTable, StaysReadableWhenMoved) {
    RemoteConfigTable first(Configs{{"key", "v"}});
    const std::optional<std::string_view> before = first.find("key");
    const RemoteConfigTable second(std::move(first));
    EXPECT_EQ(second.find("key"), "v");
    EXPECT_EQ(before, "v");
}

}  // namespace
}  // namespace vorna
