// SPDX-License-Identifier: Apache-2.0
#include <tools/common/Files.h>

#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <string>

namespace vorna::tools {
namespace {

using support::TemporaryFolder;

TEST(ReadFile, ReturnsTheBytesOfTheFile) {
    const TemporaryFolder folder;
    const std::string bytes("\xFF\0{}\r\n", 6);
    EXPECT_EQ(readFile(folder.write("ü.json", bytes)).value_or("unreadable"), bytes);
    EXPECT_EQ(readFile(folder.write("empty", "")).value_or("unreadable"), "");
}

TEST(ReadFile, ReadsFilesLargerThanAChunk) {
    const TemporaryFolder folder;
    std::string text(1024UL * 1024 + 1, 'a');
    text.back() = 'b';
    EXPECT_EQ(readFile(folder.write("large", text)).value_or("unreadable"), text);
}

TEST(ReadFile, ReportsWhyAFileCannotBeRead) {
    const TemporaryFolder folder;
    const auto missing = readFile(folder.path() / "none");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(), std::errc::no_such_file_or_directory);
    const auto directory = readFile(folder.path());
    ASSERT_FALSE(directory);
    EXPECT_EQ(directory.error(), std::errc::is_a_directory);
}

}  // namespace
}  // namespace vorna::tools
