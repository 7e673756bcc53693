// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Platform.h>

#include <tests/support/InTemporaryFolder.h>
#include <tests/support/KeyringSession.h>
#include <tests/support/ProcessVariables.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {
namespace {

namespace fs = std::filesystem;

using support::KeyringSession;
using support::namesIn;
using ::testing::ElementsAre;

constexpr std::string_view service = "io.vorna.vornasdk";
constexpr std::string_view account = "userDetails";

struct Identifier {
    const char* name;
    std::optional<std::string> identifier;
    /// std::nullopt: the program's.
    std::optional<std::string> folder;
    /// What records say.
    std::optional<std::string> reported;
};

std::ostream& operator<<(std::ostream& stream, const Identifier& row) {
    return stream << row.name;
}

class DefaultPlatform : public support::InTemporaryFolder, public testing::WithParamInterface<Identifier> {
  protected:
    void SetUp() override { support::setVariable("XDG_DATA_HOME", root_ / "data"); }

    static std::string expectedName() { return GetParam().folder.value_or(program_invocation_short_name); }

    static Platform platformWith(CredentialStoreKind kind) {
        PlatformOptions options;
        options.bundleIdentifier = GetParam().identifier;
        options.credentialStore = kind;
        return makePlatform(options);
    }
};

TEST_P(DefaultPlatform, KeepsDataInOneFolderOfTheApplicationsOwn) {
    fs::create_directories(root_ / "data");
    const Platform platform = platformWith(CredentialStoreKind::file);
    EXPECT_TRUE(platform.credentialStore->add(service, account, "value"));
    EXPECT_EQ(platform.credentialStore->read(service, account), "value");
    EXPECT_TRUE(platform.preferences->setTable("key", {}));
    EXPECT_THAT(namesIn(root_), ElementsAre("data"));
    EXPECT_THAT(namesIn(root_ / "data"), ElementsAre(expectedName()));
    EXPECT_EQ(platform.system->documentsDirectory(), root_ / "data" / expectedName());
}

TEST_P(DefaultPlatform, ReportsTheIdentifierIfThereIsOne) {
    const Platform platform = platformWith(CredentialStoreKind::file);
    EXPECT_EQ(platform.system->facts()->bundle.identifier, GetParam().reported);
    if (!GetParam().reported) {
        platform.system->supplyBundle({"of.the.toolkit", std::nullopt, std::nullopt});
        EXPECT_EQ(platform.system->facts()->bundle.identifier, "of.the.toolkit");
    }
}

TEST_P(DefaultPlatform, KeepsItsKeyringItemApartFromOtherApplications) {
    if (!KeyringSession::isPossible()) {
        GTEST_SKIP() << "dbus-daemon, dbus-monitor or gnome-keyring-daemon is not installed";
    }
    const KeyringSession session;
    const Platform platform = platformWith(CredentialStoreKind::secretService);
    ASSERT_TRUE(platform.credentialStore->add(service, account, "value"));
    EXPECT_EQ(session.itemAttribute(std::string(service), std::string(account), "application"),
              expectedName());
    PlatformOptions other;
    other.bundleIdentifier = "com.example.other";
    other.credentialStore = CredentialStoreKind::secretService;
    EXPECT_EQ(makePlatform(other).credentialStore->read(service, account),
              Unexpected(CredentialStatus::itemNotFound));
}

INSTANTIATE_TEST_SUITE_P(
    Identifiers, DefaultPlatform,
    testing::Values(Identifier{"None", std::nullopt, std::nullopt, std::nullopt},
                    Identifier{"Empty", "", std::nullopt, std::nullopt},
                    Identifier{"Usual", "com.example.app", "com.example.app", "com.example.app"},
                    Identifier{"ThisFolder", ".", std::nullopt, "."},
                    Identifier{"FolderAbove", "..", std::nullopt, ".."},
                    Identifier{"Slash", "a/b", "a_b", "a/b"},
                    Identifier{"WayOut", "../../etc", ".._.._etc", "../../etc"},
                    Identifier{"ZeroByte", std::string("a\0b", 3), "a_b", std::string("a\0b", 3)},
                    Identifier{"TooLongForAFile", std::string(300, 'x'),
                               std::string(238, 'x') + "-0d4e2ca9e9cbced7", std::string(300, 'x')}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace vorna
