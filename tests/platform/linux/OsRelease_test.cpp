// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/OsRelease.h>

#include <tests/platform/linux/SystemTree.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

namespace vorna {
namespace {

TEST(OsVersion, ComesFromOsRelease) {
    EXPECT_EQ(osVersion("NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\n", "6.1.0"), "12");
}

TEST(OsVersion, IsTheKernelsReleaseIfOsReleaseHasNoVersion) {
    EXPECT_EQ(osVersion("NAME=\"Arch Linux\"\nBUILD_ID=rolling\n", "6.1.0"), "6.1.0");
    EXPECT_EQ(osVersion("VERSION_ID=\"\"\n", "6.1.0"), "6.1.0");
    EXPECT_EQ(osVersion(std::nullopt, "6.1.0"), "6.1.0");
}

struct Row {
    const char* tree;
    const char* version;
};

TEST(OsVersion, IsCorrectForTheStoredSystems) {
    for (const Row& row :
         {Row{"pinephone-postmarketos", "edge"}, Row{"librem5-pureos", "10.3"}, Row{"thinkpad-fedora", "37"},
          Row{"desktop-debian", "12"}, Row{"raspberry-pi", "12"}, Row{"olimex-lime2-archlinuxarm", "6.1.0"},
          Row{"alpine-container", "3.20.7"}, Row{"laptop-opensuse", "20240823"}}) {
        EXPECT_EQ(readOsVersion(tests::systemTree(row.tree), "6.1.0"), row.version) << row.tree;
    }
}

TEST(OsVersion, TheFileInEtcHidesTheOneInUsr) {
    const support::TemporaryFolder folder;
    folder.write("usr/lib/os-release", "VERSION_ID=12\n");
    folder.write("etc/os-release", "NAME=Own\n");
    EXPECT_EQ(readOsVersion(folder.path(), "6.1.0"), "6.1.0");
}

}  // namespace
}  // namespace vorna
