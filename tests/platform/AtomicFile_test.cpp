// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/AtomicFile.h>

#include <tests/support/ForkedProcess.h>
#include <tests/support/InTemporaryFolder.h>
#include <tests/support/SmallDisk.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <system_error>
#include <tuple>

namespace vorna {
namespace {

namespace fs = std::filesystem;

using support::contentsOf;
using support::failure;
using support::ForkedProcess;
using support::modeOf;
using support::namesIn;
using support::SmallDisk;
using support::writeFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using Written = Result<void, std::error_code>;

constexpr const char* leftoverName = "~vorna-0123456789abcdef";

class AtomicFileInAFolder : public support::InTemporaryFolder {
  protected:
    const fs::path path_ = root_ / "file";
    const AtomicFile file_{path_};
};

TEST_F(AtomicFileInAFolder, IsReplaced) {
    EXPECT_TRUE(file_.replace("one"));
    EXPECT_TRUE(file_.replace(std::string(1'000'000, 'x')));
    EXPECT_TRUE(file_.replace(std::string("two\0", 4)));
    EXPECT_EQ(contentsOf(path_), std::string("two\0", 4));
    EXPECT_THAT(namesIn(root_), ElementsAre("file"));
}

TEST_F(AtomicFileInAFolder, IsCreatedOnlyOnce) {
    EXPECT_TRUE(file_.create("one"));
    EXPECT_EQ(file_.create("two"), failure(std::errc::file_exists));
    EXPECT_EQ(contentsOf(path_), "one");
    EXPECT_THAT(namesIn(root_), ElementsAre("file"));
}

TEST_F(AtomicFileInAFolder, HasTheGivenModeRegardlessOfTheUmask) {
    for (const mode_t mask : {mode_t{0}, mode_t{022}, mode_t{0277}}) {
        const mode_t former = umask(mask);
        const Written written = file_.replace("private");
        const mode_t ofPrivate = modeOf(path_);
        const Written shared = file_.replace("shared", 0644);
        umask(former);
        EXPECT_TRUE(written && shared) << mask;
        EXPECT_EQ(ofPrivate, 0600U) << mask;
        EXPECT_EQ(modeOf(path_), 0644U) << mask;
    }
}

TEST_F(AtomicFileInAFolder, MayBeNamedRelativeToTheWorkingFolder) {
    fs::current_path(root_);
    EXPECT_TRUE(AtomicFile("file").replace("here"));
    EXPECT_EQ(contentsOf(path_), "here");
}

TEST_F(AtomicFileInAFolder, MayBeNamedWithinAnOpenFolder) {
    fs::create_directory(root_ / "inner");
    const FileDescriptor folder(open((root_ / "inner").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    fs::rename(root_ / "inner", root_ / "moved");
    EXPECT_TRUE(AtomicFile(folder, "file").create("contents"));
    EXPECT_EQ(contentsOf(root_ / "moved" / "file"), "contents");
}

TEST_F(AtomicFileInAFolder, NeedsAFileName) {
    const FileDescriptor folder(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("a/b"), std::string("../file"),
          std::string("a\0b", 3), std::string(leftoverName)}) {
        EXPECT_EQ(AtomicFile(folder, name).replace(""), failure(std::errc::invalid_argument)) << name;
        EXPECT_EQ(AtomicFile(folder, name).create(""), failure(std::errc::invalid_argument)) << name;
    }
    EXPECT_EQ(AtomicFile(root_ / "").replace(""), failure(std::errc::invalid_argument));
    EXPECT_EQ(AtomicFile("").replace(""), failure(std::errc::invalid_argument));
    EXPECT_EQ(AtomicFile(root_ / std::string(300, 'x')).replace(""), failure(std::errc::filename_too_long));
    EXPECT_THAT(namesIn(root_), IsEmpty());
}

TEST_F(AtomicFileInAFolder, NeedsItsFolder) {
    EXPECT_EQ(AtomicFile(root_ / "missing" / "file").replace(""),
              failure(std::errc::no_such_file_or_directory));
    writeFile(path_, "");
    EXPECT_EQ(AtomicFile(path_ / "file").create(""), failure(std::errc::not_a_directory));
    fs::create_symlink("/nonexistent/x", root_ / "dangling");
    EXPECT_EQ(AtomicFile(root_ / "dangling" / "file").replace(""),
              failure(std::errc::no_such_file_or_directory));
}

struct InTheWay {
    const char* name;
    /// Puts it in the file's place.
    void (*put)(const fs::path& path);
    std::errc reason;
};

std::ostream& operator<<(std::ostream& stream, const InTheWay& row) {
    return stream << row.name;
}

class NoRegularFile : public AtomicFileInAFolder, public testing::WithParamInterface<InTheWay> {};

TEST_P(NoRegularFile, IsNeverReplaced) {
    const fs::path target = root_ / "target";
    writeFile(target, "theirs");
    GetParam().put(path_);
    struct stat before = {};
    if (lstat(path_.c_str(), &before) != 0) {
        GTEST_SKIP() << "only root can make one";
    }
    EXPECT_EQ(file_.replace("new"), failure(GetParam().reason));
    EXPECT_EQ(file_.create("new"), failure(std::errc::file_exists));
    struct stat after = {};
    ASSERT_EQ(lstat(path_.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(contentsOf(target), "theirs");
    EXPECT_THAT(namesIn(root_), UnorderedElementsAre("file", "target"));
}

INSTANTIATE_TEST_SUITE_P(
    AtomicFile, NoRegularFile,
    testing::Values(
        InTheWay{"Link", [](const fs::path& path) { fs::create_symlink("target", path); },
                 std::errc::too_many_symbolic_link_levels},
        InTheWay{"LinkToNowhere", [](const fs::path& path) { fs::create_symlink("/nonexistent/x", path); },
                 std::errc::too_many_symbolic_link_levels},
        InTheWay{"LinkToADevice", [](const fs::path& path) { fs::create_symlink("/dev/null", path); },
                 std::errc::too_many_symbolic_link_levels},
        InTheWay{"Folder", [](const fs::path& path) { fs::create_directories(path / "within"); },
                 std::errc::is_a_directory},
        InTheWay{"EmptyFolder", [](const fs::path& path) { fs::create_directory(path); },
                 std::errc::is_a_directory},
        InTheWay{"Pipe", [](const fs::path& path) { mkfifo(path.c_str(), 0600); },
                 std::errc::no_such_device_or_address},
        InTheWay{"Socket", support::makeSocket, std::errc::no_such_device_or_address},
        InTheWay{"Device", [](const fs::path& path) { mknod(path.c_str(), S_IFCHR | 0600, makedev(1, 3)); },
                 std::errc::no_such_device_or_address}),
    [](const auto& row) { return row.param.name; });

TEST_F(AtomicFileInAFolder, RemovesLeftoversOfKilledProcessesAndNothingElse) {
    const std::string others[] = {"~vorna-0123456789abcde", "~vorna-0123456789abcdeg", "~vorna-",
                                  "~1234567890", "~lock.document#"};
    for (const std::string& name : others) {
        writeFile(root_ / name, "theirs");
    }
    for (const bool replaces : {true, false}) {
        writeFile(root_ / leftoverName, "half a val");
        EXPECT_TRUE(replaces ? file_.replace("value") : AtomicFile(root_ / "new").create("value"));
        EXPECT_THAT(namesIn(root_), testing::Not(testing::Contains(leftoverName)));
    }
    for (const std::string& name : others) {
        EXPECT_EQ(contentsOf(root_ / name), "theirs") << name;
    }
}

TEST_F(AtomicFileInAFolder, LeavesATemporaryFileThatAnotherProcessIsStillWriting) {
    const fs::path unfinished = root_ / leftoverName;
    writeFile(unfinished, "half a val");
    const FileDescriptor writer(open(unfinished.c_str(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(flock(writer.number(), LOCK_EX), 0);
    EXPECT_TRUE(file_.replace("value"));
    EXPECT_THAT(namesIn(root_), UnorderedElementsAre("file", leftoverName));
}

TEST_F(AtomicFileInAFolder, DoesNotWaitForAForeignLock) {
    ASSERT_TRUE(file_.replace("old"));
    const FileDescriptor folder(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const FileDescriptor file(open(path_.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(flock(folder.number(), LOCK_EX), 0);
    ASSERT_EQ(flock(file.number(), LOCK_EX), 0);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    ASSERT_EQ(fcntl(file.number(), F_OFD_SETLK, &whole), 0);
    const auto began = std::chrono::steady_clock::now();
    EXPECT_TRUE(file_.replace("new"));
    EXPECT_TRUE(AtomicFile(root_ / "another").create("new"));
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(5)) << "it waited";
    EXPECT_EQ(contentsOf(path_), "new");
}

TEST_F(AtomicFileInAFolder, LeavesAPipeWithATemporaryName) {
    ASSERT_EQ(mkfifo((root_ / leftoverName).c_str(), 0600), 0);
    EXPECT_TRUE(file_.replace("value"));
    EXPECT_THAT(namesIn(root_), UnorderedElementsAre("file", leftoverName));
}

TEST_F(AtomicFileInAFolder, IsNotWrittenThroughALinkWithATemporaryName) {
    const fs::path target = root_ / "target";
    writeFile(target, "precious");
    fs::create_symlink(target, root_ / leftoverName);
    EXPECT_TRUE(file_.replace("value"));
    EXPECT_EQ(contentsOf(target), "precious");
}

TEST_F(AtomicFileInAFolder, HasTheOldOrTheNewContentsAfterAKill) {
    const std::string before(500'000, 'a');
    const std::string after(500'000, 'b');
    ASSERT_TRUE(file_.replace(before));
    int killed = 0;
    int leftovers = 0;
    for (int round = 0; round < 60; ++round) {
        ForkedProcess process([&](const std::string&) {
            for (int count = 0; count < 100; ++count) {
                std::ignore = file_.replace(count % 2 == 0 ? after : before);
            }
            return 0;
        });
        process.start();
        const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(500 + 137 * round);
        while (std::chrono::steady_clock::now() < until) {
            // A sleep would end only at certain moments.
        }
        process.kill();
        killed += process.wait() == -1 ? 1 : 0;
        const std::string found = contentsOf(path_);
        ASSERT_TRUE(found == before || found == after) << found.size() << " bytes";
        leftovers += namesIn(root_).size() > 1 ? 1 : 0;
    }
    EXPECT_GT(killed, 0);
    EXPECT_GT(leftovers, 0) << "no kill was in the middle of a write";
    EXPECT_TRUE(file_.replace(before));
    EXPECT_THAT(namesIn(root_), ElementsAre("file"));
}

TEST_F(AtomicFileInAFolder, IsUnchangedAtTheLimitOnFiles) {
    ASSERT_TRUE(file_.replace("old"));
    ASSERT_NE(std::signal(SIGXFSZ, SIG_IGN), SIG_ERR);
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, rlim_t{9999}}) {
        const rlimit small{limit, former.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        const Written replaced = file_.replace(std::string(10'000, 'x'));
        const Written created = AtomicFile(root_ / "new").create(std::string(10'000, 'x'));
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &former), 0);
        EXPECT_EQ(replaced, failure(std::errc::file_too_large)) << limit;
        EXPECT_EQ(created, failure(std::errc::file_too_large)) << limit;
        EXPECT_EQ(contentsOf(path_), "old");
        EXPECT_THAT(namesIn(root_), ElementsAre("file")) << limit;
    }
}

TEST_F(AtomicFileInAFolder, IsUnchangedOnAFullOrReadOnlyDisk) {
    if (!SmallDisk::whyNot().empty()) {
        GTEST_SKIP() << SmallDisk::whyNot();
    }
    const SmallDisk disk;
    const AtomicFile file(disk.path() / "file");
    ASSERT_TRUE(file.replace("old"));
    disk.fillUpTo(1);
    EXPECT_EQ(file.replace(std::string(std::size_t{3} * 4096, 'x')), failure(std::errc::no_space_on_device));
    EXPECT_THAT(namesIn(disk.path()), UnorderedElementsAre("file", "filler"));
    disk.makeReadOnly();
    EXPECT_EQ(file.replace("new"), failure(std::errc::read_only_file_system));
    EXPECT_EQ(AtomicFile(disk.path() / "new").create("new"), failure(std::errc::read_only_file_system));
    EXPECT_EQ(contentsOf(disk.path() / "file"), "old");
    disk.makeWritable();
    EXPECT_TRUE(file.replace("new"));
}

}  // namespace
}  // namespace vorna
