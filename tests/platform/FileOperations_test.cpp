// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/FileOperations.h>

#include <tests/support/InTemporaryFolder.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

namespace vorna {
namespace {

namespace fs = std::filesystem;

using support::failure;
using support::modeOf;
using support::TemporaryFolder;
using support::writeFile;

using Made = Result<void, std::error_code>;

class MakeFolders : public support::InTemporaryFolder {};

TEST_F(MakeFolders, CreatesMissingFoldersForTheOwnerOnly) {
    const mode_t before = umask(0);
    const Made made = makeFolders(root_ / ".local/share/app");
    umask(before);
    EXPECT_TRUE(made);
    for (const char* const folder : {".local", ".local/share", ".local/share/app"}) {
        EXPECT_TRUE(fs::is_directory(root_ / folder)) << folder;
        EXPECT_EQ(modeOf(root_ / folder), 0700U) << folder;
    }
}

TEST_F(MakeFolders, AcceptsAnyFormOfPath) {
    for (const char* const form : {"a/b/", "c//d///", "e/./f", "g/../h/i", "a/b", "."}) {
        EXPECT_TRUE(makeFolders(root_.string() + "/" + form)) << form;
        EXPECT_TRUE(fs::is_directory(root_ / form)) << form;
    }
    fs::current_path(root_);
    for (const char* const form : {"j", "k/l", "m/n/", "../" /* the parent */, "./o", "/", "//"}) {
        EXPECT_TRUE(makeFolders(form)) << form;
        EXPECT_TRUE(fs::is_directory(form)) << form;
    }
    EXPECT_TRUE(fs::is_directory(root_ / "m/n"));
    EXPECT_EQ(makeFolders(""), failure(std::errc::no_such_file_or_directory));
}

TEST_F(MakeFolders, LeavesAnExistingFolderUnchanged) {
    fs::create_directories(root_ / "app");
    writeFile(root_ / "app/kept", "contents");
    fs::permissions(root_ / "app", fs::perms(0755));
    EXPECT_TRUE(makeFolders(root_ / "app"));
    EXPECT_TRUE(fs::exists(root_ / "app/kept"));
    EXPECT_EQ(fs::status(root_ / "app").permissions(), fs::perms(0755));
}

TEST_F(MakeFolders, FollowsLinksToFolders) {
    fs::create_directory(root_ / "elsewhere");
    fs::create_directory_symlink("elsewhere", root_ / "link");
    EXPECT_TRUE(makeFolders(root_ / "link"));
    EXPECT_TRUE(makeFolders(root_ / "link/a/b"));
    EXPECT_TRUE(fs::is_directory(root_ / "elsewhere/a/b"));
}

TEST_F(MakeFolders, FailsAtADanglingLink) {
    fs::create_symlink("/nonexistent/x", root_ / "link");
    for (const char* const path : {"link", "link/", "link/y", "link/y/z", "link/y/"}) {
        const Made made = makeFolders(root_ / path);
        ASSERT_FALSE(made) << path;
        // The slash makes the kernel follow the link.
        EXPECT_TRUE(made.error() == std::errc::no_such_file_or_directory ||
                    (path == std::string("link/") && made.error() == std::errc::not_a_directory))
            << path << ": " << made.error().message();
    }
    EXPECT_TRUE(fs::is_symlink(root_ / "link"));
    EXPECT_FALSE(fs::exists("/nonexistent"));
}

TEST_F(MakeFolders, FailsAtALoopOfLinks) {
    fs::create_symlink("b", root_ / "a");
    fs::create_symlink("a", root_ / "b");
    fs::create_symlink("self/x", root_ / "self");
    for (const char* const path : {"a", "a/y", "a/y/z", "self", "self/y"}) {
        EXPECT_EQ(makeFolders(root_ / path), failure(std::errc::too_many_symbolic_link_levels)) << path;
    }
}

TEST_F(MakeFolders, FailsAtAFile) {
    writeFile(root_ / "file", "contents");
    for (const char* const path : {"file", "file/app", "file/app/y"}) {
        EXPECT_EQ(makeFolders(root_ / path), failure(std::errc::not_a_directory)) << path;
    }
    EXPECT_TRUE(fs::is_regular_file(root_ / "file"));
}

TEST_F(MakeFolders, FailsAtAFolderThatMayNotBeEntered) {
    constexpr uid_t nobody = 65534;
    fs::create_directories(root_ / "closed");
    fs::permissions(root_, fs::perms(0755));
    fs::permissions(root_ / "closed", fs::perms(0));
    const bool isSuperuser = geteuid() == 0;
    if (isSuperuser) {
        ASSERT_EQ(seteuid(nobody), 0);
    }
    const Made within = makeFolders(root_ / "closed/a/b");
    const Made beside = makeFolders(root_ / "other/a");
    if (isSuperuser) {
        ASSERT_EQ(seteuid(0), 0);
        EXPECT_EQ(beside, failure(std::errc::permission_denied));
    }
    fs::permissions(root_ / "closed", fs::perms(0700));
    EXPECT_EQ(within, failure(std::errc::permission_denied));
}

TEST_F(MakeFolders, RejectsAPathThatIsTooLong) {
    EXPECT_EQ(makeFolders(root_ / std::string(300, 'x') / "a"), failure(std::errc::filename_too_long));
    std::string deep = root_;
    for (int depth = 0; depth < 3000; ++depth) {
        deep += "/x";
    }
    EXPECT_EQ(makeFolders(deep), failure(std::errc::filename_too_long));
    EXPECT_FALSE(fs::exists(root_ / "x"));
}

class OpenRegularFile : public support::InTemporaryFolder {
  protected:
    Result<void, std::error_code> open(const char* name) const {
        const auto file = openRegularFile(AT_FDCWD, (root_ / name).c_str(), O_RDONLY);
        return file ? Result<void, std::error_code>() : Unexpected(file.error());
    }
};

TEST_F(OpenRegularFile, OpensNothingElseAndNeverWaits) {
    writeFile(root_ / "file", "contents");
    fs::create_symlink("file", root_ / "link");
    fs::create_symlink("/nonexistent/x", root_ / "dangling");
    fs::create_directory(root_ / "folder");
    ASSERT_EQ(mkfifo((root_ / "pipe").c_str(), 0600), 0);
    support::makeSocket(root_ / "socket");
    EXPECT_TRUE(open("file"));
    EXPECT_EQ(open("link"), failure(std::errc::too_many_symbolic_link_levels));
    EXPECT_EQ(open("dangling"), failure(std::errc::too_many_symbolic_link_levels));
    EXPECT_EQ(open("folder"), failure(std::errc::is_a_directory));
    EXPECT_EQ(open("pipe"), failure(std::errc::no_such_device_or_address));
    EXPECT_EQ(open("socket"), failure(std::errc::no_such_device_or_address));
    EXPECT_EQ(open("/dev/null"), failure(std::errc::no_such_device_or_address));
    EXPECT_EQ(open("missing"), failure(std::errc::no_such_file_or_directory));
    EXPECT_EQ(open("file/within"), failure(std::errc::not_a_directory));
}

/// What the check sees is not always what is then opened.
TEST_F(OpenRegularFile, DoesNotWaitForAPipeThatTakesTheFilesPlace) {
    const fs::path file = root_ / "file";
    const fs::path pipe = root_ / "pipe";
    std::atomic<bool> isOver = false;
    std::thread swapping([&] {
        while (!isOver) {
            writeFile(root_ / "draft", "contents");
            fs::rename(root_ / "draft", file);
            ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
            fs::rename(pipe, file);
        }
    });
    int opened = 0;
    int refused = 0;
    // On a busy machine the other thread may not run for a while.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while ((opened < 5000 || refused < 5000) && std::chrono::steady_clock::now() < deadline) {
        const Result<void, std::error_code> result = open("file");
        opened += result ? 1 : 0;
        refused += result == failure(std::errc::no_such_device_or_address) ? 1 : 0;
    }
    isOver = true;
    swapping.join();
    EXPECT_GT(opened, 0);
    EXPECT_GT(refused, 0);
}

class RenameToFreeName : public support::InTemporaryFolder {};

TEST_F(RenameToFreeName, NeverReplaces) {
    const std::string from = root_ / "from";
    const std::string to = root_ / "to";
    writeFile(from, "one");
    EXPECT_TRUE(renameToFreeName(AT_FDCWD, from.c_str(), to.c_str()));
    EXPECT_FALSE(fs::exists(from));
    writeFile(from, "two");
    EXPECT_EQ(renameToFreeName(AT_FDCWD, from.c_str(), to.c_str()), failure(std::errc::file_exists));
    EXPECT_EQ(support::contentsOf(from), "two");
    EXPECT_EQ(support::contentsOf(to), "one");
}

TEST(ReadAll, FailsBeyondTheMaximumSize) {
    const TemporaryFolder temporary;
    const fs::path path = temporary.path() / "file";
    for (const std::size_t size : {std::size_t{0}, std::size_t{10}, std::size_t{100'000}}) {
        writeFile(path, std::string(size, 'x'));
        const auto read = [&](std::size_t largest) {
            return openAt(AT_FDCWD, path.c_str(), O_RDONLY).and_then([&](const FileDescriptor& file) {
                return readAll(file, largest);
            });
        };
        EXPECT_TRUE(read(size) == std::string(size, 'x')) << size;
        if (size > 0) {
            EXPECT_TRUE(read(size - 1) == Unexpected(std::make_error_code(std::errc::file_too_large)));
        }
    }
}

}  // namespace
}  // namespace vorna
