// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/DataDirectory.h>

#include <tests/platform/linux/SystemTree.h>

#include <vorna/text/Utf8.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {
namespace {

using tests::environmentOf;

TEST(HomeFolder, ComesFromTheVariableElseFromTheAccount) {
    EXPECT_EQ(homeFolder(environmentOf({{"HOME", "/home/ayse"}}, "/home/account")), "/home/ayse");
    EXPECT_EQ(homeFolder(environmentOf({}, "/home/account")), "/home/account");
    EXPECT_EQ(homeFolder(environmentOf({{"HOME", ""}}, "/home/account")), "/home/account");
    EXPECT_EQ(homeFolder(environmentOf({{"HOME", "home"}}, "/home/account")), "/home/account");
    EXPECT_EQ(homeFolder(environmentOf({})), std::nullopt);
    EXPECT_EQ(homeFolder(environmentOf({}, "relative")), std::nullopt);
}

TEST(HomeFolder, IsAnAbsolutePathInThisProcess) {
    const std::optional<std::string> home = homeFolder(processEnvironment());
    ASSERT_TRUE(home);
    EXPECT_TRUE(home->starts_with('/')) << *home;
    EXPECT_EQ(processEnvironment().variable("VORNA_TEST_VARIABLE_THAT_NOBODY_SETS"), std::nullopt);
}

TEST(DefaultDataDirectory, IsNamedAfterTheApplicationInTheUsersData) {
    EXPECT_EQ(defaultDataDirectory("com.example.app", environmentOf({{"HOME", "/home/ayse"}})),
              "/home/ayse/.local/share/com.example.app");
    EXPECT_EQ(defaultDataDirectory("com.example.app",
                                   environmentOf({{"HOME", "/home/ayse"}, {"XDG_DATA_HOME", "/data"}})),
              "/data/com.example.app");
}

TEST(DefaultDataDirectory, ARelativeOrEmptyDataFolderIsIgnored) {
    for (const char* const data : {"", "data", "./data", "~/data"}) {
        EXPECT_EQ(
            defaultDataDirectory("app", environmentOf({{"HOME", "/home/ayse"}, {"XDG_DATA_HOME", data}})),
            "/home/ayse/.local/share/app")
            << data;
    }
}

TEST(DefaultDataDirectory, IsNamedAfterTheProgramIfTheApplicationHasNoIdentifier) {
    const std::string program = programName();
    EXPECT_FALSE(program.empty());
    EXPECT_EQ(program, std::filesystem::read_symlink("/proc/self/exe").filename().string());
    const Environment environment = environmentOf({{"HOME", "/home/ayse"}});
    EXPECT_EQ(defaultDataDirectory(std::nullopt, environment), "/home/ayse/.local/share/" + program);
    EXPECT_EQ(defaultDataDirectory("", environment), "/home/ayse/.local/share/" + program);
}

TEST(DefaultDataDirectory, NeedsNoHomeIfTheUsersDataHasAFolder) {
    EXPECT_EQ(defaultDataDirectory("app", environmentOf({{"XDG_DATA_HOME", "/data"}})), "/data/app");
}

TEST(DefaultDataDirectory, IsAbsentWithoutAHome) {
    EXPECT_EQ(defaultDataDirectory("app", environmentOf({})), std::nullopt);
}

TEST(DefaultDataDirectory, AnIdentifierCannotLeaveTheUsersData) {
    const Environment environment = environmentOf({{"XDG_DATA_HOME", "/data"}});
    EXPECT_EQ(defaultDataDirectory("../../etc", environment), "/data/.._.._etc");
    EXPECT_EQ(defaultDataDirectory("..", environment), "/data/" + programName());
    EXPECT_EQ(defaultDataDirectory(".", environment), "/data/" + programName());
    EXPECT_EQ(defaultDataDirectory("/", environment), "/data/_");
    EXPECT_EQ(defaultDataDirectory("a\nb", environment), "/data/a_b");
}

TEST(FolderName, KeepsEveryOtherName) {
    for (const char* const name : {"com.example.app", "My Game", "...", ".hidden", "oyun-ğ"}) {
        EXPECT_EQ(folderName(name), name);
    }
    EXPECT_EQ(folderName(std::string_view("a\0b", 3)), "a_b");
    EXPECT_EQ(folderName(""), "application");
    EXPECT_EQ(folderName("."), "application");
    EXPECT_EQ(folderName(".."), "application");
}

TEST(FolderName, FitsAnyFileSystemAndStaysDifferent) {
    const std::string longest(255, 'x');
    EXPECT_EQ(folderName(longest), longest);
    for (std::size_t lead = 0; lead < 3; ++lead) {
        std::string name(lead, 'x');
        while (name.size() < 300) {
            name += "ğ";
        }
        const std::string folder = folderName(name);
        EXPECT_LE(folder.size(), 255U);
        EXPECT_GE(folder.size(), 250U);
        EXPECT_TRUE(utf8::isValid(folder)) << folder;
        EXPECT_EQ(folderName(name), folder);
        EXPECT_NE(folderName(name + "1"), folderName(name + "2"));
    }
}

}  // namespace
}  // namespace vorna
