// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/SystemFile.h>

#include <tests/platform/linux/SystemTree.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>

namespace vorna {
namespace {

using support::TemporaryFolder;

TEST(SystemFile, ReturnsTheBytesUnchanged) {
    const TemporaryFolder folder;
    folder.write("model", std::string_view("Board\0", 6));
    EXPECT_EQ(readSystemFile(folder.path() / "model"), std::string("Board\0", 6));
}

TEST(SystemFile, AnEmptyFileIsEmptyButIsNotAValue) {
    const TemporaryFolder folder;
    folder.write("empty", "");
    folder.write("blank", " \n");
    EXPECT_EQ(readSystemFile(folder.path() / "empty"), "");
    EXPECT_EQ(readSystemValue(folder.path() / "empty"), std::nullopt);
    EXPECT_EQ(readSystemValue(folder.path() / "blank"), std::nullopt);
}

TEST(SystemFile, AValueIsTrimmed) {
    const TemporaryFolder folder;
    folder.write("status", " Not charging\n");
    EXPECT_EQ(readSystemValue(folder.path() / "status"), "Not charging");
}

TEST(SystemFile, ReadsNoMoreThanTheFirst64KiB) {
    const TemporaryFolder folder;
    folder.write("long", std::string(200'000, 'x'));
    EXPECT_EQ(readSystemFile(folder.path() / "long"), std::string(65'536, 'x'));
}

TEST(SystemFile, AMissingFileIsNotRead) {
    const TemporaryFolder folder;
    EXPECT_EQ(readSystemFile(folder.path() / "none"), std::nullopt);
    EXPECT_EQ(readSystemValue(folder.path() / "none"), std::nullopt);
}

TEST(SystemFile, AFolderOrADeviceIsNotRead) {
    EXPECT_EQ(readSystemFile("/tmp"), std::nullopt);
    EXPECT_EQ(readSystemFile("/dev/zero"), std::nullopt);
}

TEST(SystemFile, APipeIsNeitherReadNorWaitedFor) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(readSystemFile(pipe), std::nullopt);
}

TEST(SystemFile, ReadsFilesWhoseSizeTheKernelDoesNotReport) {
    ASSERT_EQ(std::filesystem::file_size("/proc/self/status"), 0U);
    EXPECT_TRUE(readSystemFile("/proc/self/status").value_or("").starts_with("Name:"));
}

TEST(SystemFile, NamesInAFolderAreSortedWithoutHiddenOnes) {
    const TemporaryFolder folder;
    for (const char* const name : {"BAT1", "AC", ".hidden", "BAT0"}) {
        folder.write(name, "");
    }
    EXPECT_EQ(namesInFolder(folder.path()), (std::vector<std::string>{"AC", "BAT0", "BAT1"}));
    EXPECT_TRUE(namesInFolder(folder.path() / "none").empty());
    EXPECT_TRUE(namesInFolder(folder.path() / "AC").empty());
}

}  // namespace
}  // namespace vorna
