// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/ServerIdentity.h>

#include <tests/support/TemporaryFolder.h>
#include <tools/devserver/CertificateAuthority.h>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace vorna::devserver {
namespace {

using std::chrono::hours;
using std::chrono::system_clock;
using support::contentsOf;
using support::TemporaryFolder;

const system_clock::time_point today{std::chrono::seconds{1'800'000'000}};

bool isTrusted(const ServerIdentity& identity, const std::vector<std::string>& names,
               const std::vector<std::string>& addresses, system_clock::time_point time) {
    const auto authority = CertificateAuthority::fromPem(
        {contentsOf(identity.authority), contentsOf(identity.authority.parent_path() / "ca.key")});
    return authority.vouchesFor({contentsOf(identity.certificate), contentsOf(identity.key)}, names,
                                addresses, time);
}

unsigned modeOf(const std::filesystem::path& path) {
    struct stat facts {};

    return ::stat(path.c_str(), &facts) == 0 ? facts.st_mode & 0777U : 0;
}

TEST(ServerIdentity, IsCreatedForTheLoopbackNamesOnFirstUse) {
    const TemporaryFolder folder;
    const auto identity = serverIdentity(folder.path() / "new", {}, today);
    EXPECT_TRUE(isTrusted(identity, {"localhost"}, {"127.0.0.1", "::1"}, today));
    EXPECT_FALSE(isTrusted(identity, {"vorna.example"}, {}, today));
    EXPECT_EQ(modeOf(identity.key), 0600U);
    EXPECT_EQ(modeOf(folder.path() / "new" / "ca.key"), 0600U);
}

TEST(ServerIdentity, StaysTheSameAcrossStarts) {
    const TemporaryFolder folder;
    const auto identity = serverIdentity(folder.path(), {}, today);
    const std::string authority = contentsOf(identity.authority);
    const std::string certificate = contentsOf(identity.certificate);
    static_cast<void>(serverIdentity(folder.path(), {}, today + hours{24 * 100}));
    EXPECT_EQ(contentsOf(identity.authority), authority);
    EXPECT_EQ(contentsOf(identity.certificate), certificate);
}

TEST(ServerIdentity, RenewsAnExpiredServerCertificateUnderTheSameAuthority) {
    const TemporaryFolder folder;
    const auto identity = serverIdentity(folder.path(), {}, today);
    const std::string authority = contentsOf(identity.authority);
    const auto later = today + hours{24 * 500};
    EXPECT_FALSE(isTrusted(identity, {"localhost"}, {}, later));
    static_cast<void>(serverIdentity(folder.path(), {}, later));
    EXPECT_TRUE(isTrusted(identity, {"localhost"}, {}, later));
    EXPECT_EQ(contentsOf(identity.authority), authority);
}

TEST(ServerIdentity, RenewsAnExpiredAuthority) {
    const TemporaryFolder folder;
    const auto identity = serverIdentity(folder.path(), {}, today);
    const std::string authority = contentsOf(identity.authority);
    const auto later = today + hours{24 * 4000};
    static_cast<void>(serverIdentity(folder.path(), {}, later));
    EXPECT_NE(contentsOf(identity.authority), authority);
    EXPECT_TRUE(isTrusted(identity, {"localhost"}, {}, later));
}

TEST(ServerIdentity, AddsAFurtherName) {
    const TemporaryFolder folder;
    const auto identity = serverIdentity(folder.path(), {}, today);
    const std::string authority = contentsOf(identity.authority);
    static_cast<void>(serverIdentity(folder.path(), {"desk.example", "192.0.2.7"}, today));
    EXPECT_TRUE(isTrusted(identity, {"localhost", "desk.example"}, {"127.0.0.1", "192.0.2.7"}, today));
    EXPECT_EQ(contentsOf(identity.authority), authority);
}

TEST(ServerIdentity, ReplacesDamagedFiles) {
    const TemporaryFolder folder;
    const auto identity = serverIdentity(folder.path(), {}, today);
    folder.write("server.pem", "garbage");
    static_cast<void>(serverIdentity(folder.path(), {}, today));
    EXPECT_TRUE(isTrusted(identity, {"localhost"}, {}, today));
    folder.write("ca.key", "");
    static_cast<void>(serverIdentity(folder.path(), {}, today));
    EXPECT_TRUE(isTrusted(identity, {"localhost"}, {}, today));
}

TEST(ServerIdentity, NamesAFolderThatCannotBeCreated) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "");
    EXPECT_THROW(static_cast<void>(serverIdentity(file / "below", {}, today)), std::runtime_error);
}

}  // namespace
}  // namespace vorna::devserver
