// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/FileOperations.h>

#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace vorna {
namespace {

namespace fs = std::filesystem;

using support::TemporaryFolder;
using support::writeFile;

using Made = Result<void, std::error_code>;

Made failure(std::errc reason) {
    return Unexpected(std::make_error_code(reason));
}

class MakeFolders : public testing::Test {
  protected:
    const TemporaryFolder temporary_;
    const fs::path root_ = temporary_.path();
};

TEST_F(MakeFolders, CreatesMissingFoldersForTheOwnerOnly) {
    const mode_t before = umask(0);
    const Made made = makeFolders(root_ / ".local/share/app");
    umask(before);
    EXPECT_TRUE(made);
    for (const char* const folder : {".local", ".local/share", ".local/share/app"}) {
        struct stat status = {};
        ASSERT_EQ(stat((root_ / folder).c_str(), &status), 0) << folder;
        EXPECT_TRUE(S_ISDIR(status.st_mode)) << folder;
        EXPECT_EQ(status.st_mode & 07777U, 0700U) << folder;
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
