// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/MediaFolder.h>

#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

namespace vorna::devserver {
namespace {

using support::TemporaryFolder;

// A media folder with a secret next to it that must never be served.
class Media : public testing::Test {
  protected:
    Media() {
        folder_.write("secret.txt", "secret");
        folder_.write("media-private/secret.txt", "secret");
        folder_.write("media/clip.mp4", "moving");
        folder_.write("media/pictures/a b+ü.png", "still");
        folder_.write("media/..hidden", "visible");
    }

    [[nodiscard]] std::string read(std::string_view name) const {
        const auto file = MediaFolder(root()).open(name);
        if (!file) {
            return "(none)";
        }
        std::array<char, 100> buffer{};
        const ssize_t count = ::pread(file->file.number(), buffer.data(), buffer.size(), 0);
        EXPECT_EQ(static_cast<std::uint64_t>(count), file->size);
        return {buffer.data(), static_cast<std::size_t>(count)};
    }

    [[nodiscard]] std::filesystem::path root() const { return folder_.path() / "media"; }

    [[nodiscard]] const std::filesystem::path& outside() const { return folder_.path(); }

  private:
    TemporaryFolder folder_;
};

TEST_F(Media, IsFoundByName) {
    EXPECT_EQ(read("clip.mp4"), "moving");
    EXPECT_EQ(read("pictures/a%20b+%C3%BC.png"), "still");
    EXPECT_EQ(read("..hidden"), "visible");
}

TEST_F(Media, HasATypeByItsExtension) {
    EXPECT_EQ(MediaFolder(root()).open("clip.mp4")->type, "video/mp4");
}

TEST_F(Media, IsNotFoundByNamesThatAreNotFiles) {
    for (const std::string_view name : {"", "none.png", "pictures", "pictures/", "/clip.mp4", "pictures//a",
                                        "./clip.mp4", "pictures/../clip.mp4", "pictures%2fa%20b+%C3%BC.png",
                                        "%", "%2", "%zz", "clip.mp4%00", "%2e/clip.mp4"}) {
        EXPECT_EQ(read(name), "(none)") << name;
    }
}

TEST_F(Media, IsNotFoundOutsideItsFolder) {
    for (const std::string_view name :
         {"../secret.txt", "%2e%2e/secret.txt", "..%2fsecret.txt", "%2e%2e%2fsecret.txt",
          "pictures/../../secret.txt", "pictures/%2e%2e/%2e%2e/secret.txt", "..%5csecret.txt",
          "../media-private/secret.txt", "..%252fsecret.txt", "//etc/passwd"}) {
        EXPECT_EQ(read(name), "(none)") << name;
    }
}

TEST_F(Media, SymbolicLinksAreFollowedInsideTheFolderOnly) {
    std::filesystem::create_symlink("clip.mp4", root() / "inside.mp4");
    std::filesystem::create_symlink("../secret.txt", root() / "outside.txt");
    std::filesystem::create_symlink(outside(), root() / "up");
    std::filesystem::create_directory_symlink(outside() / "media-private", root() / "beside");
    EXPECT_EQ(read("inside.mp4"), "moving");
    EXPECT_EQ(read("outside.txt"), "(none)");
    EXPECT_EQ(read("up/secret.txt"), "(none)");
    EXPECT_EQ(read("beside/secret.txt"), "(none)");
}

TEST_F(Media, DoesNotWaitForPipes) {
    ASSERT_EQ(::mkfifo((root() / "pipe.mp4").c_str(), 0600), 0);
    EXPECT_EQ(read("pipe.mp4"), "(none)");
}

TEST_F(Media, NeedsAFolder) {
    EXPECT_THROW(MediaFolder(root() / "none"), std::runtime_error);
    EXPECT_THROW(MediaFolder(root() / "clip.mp4"), std::runtime_error);
}

TEST(MimeType, DependsOnTheExtension) {
    EXPECT_EQ(mimeType("a.png"), "image/png");
    EXPECT_EQ(mimeType("a.jpg"), "image/jpeg");
    EXPECT_EQ(mimeType("a.JPEG"), "image/jpeg");
    EXPECT_EQ(mimeType("a.gif"), "image/gif");
    EXPECT_EQ(mimeType("a.webp"), "image/webp");
    EXPECT_EQ(mimeType("a.svg"), "image/svg+xml");
    EXPECT_EQ(mimeType("a.webm"), "video/webm");
    EXPECT_EQ(mimeType("a.mov"), "video/quicktime");
    EXPECT_EQ(mimeType("a.m4v"), "video/x-m4v");
    EXPECT_EQ(mimeType("a.json"), "application/json");
    EXPECT_EQ(mimeType("a.png.xyz"), "application/octet-stream");
    EXPECT_EQ(mimeType("png"), "application/octet-stream");
}

}  // namespace
}  // namespace vorna::devserver
