// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/SecretServiceCredentialStore.h>

#include <tests/support/ForkedProcess.h>
#include <tests/support/KeyringSession.h>
#include <tests/support/ProcessVariables.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>

namespace vorna {
namespace {

using support::ForkedProcess;
using support::KeyringSession;

constexpr std::string_view service = "io.vorna.vornasdk";
constexpr std::string_view account = "userDetails";
const std::string application = "com.example.app";

using std::chrono::milliseconds;
using std::chrono::steady_clock;

milliseconds since(steady_clock::time_point began) {
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - began);
}

class SecretServiceStore : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!KeyringSession::isPossible()) {
            GTEST_SKIP() << "dbus-daemon, dbus-monitor or gnome-keyring-daemon is not installed";
        }
    }
};

TEST_F(SecretServiceStore, IsInitiallyEmpty) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::itemNotFound));
}

TEST_F(SecretServiceStore, ReturnsTheAddedValue) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, R"({"userId":"x","installTime":1})"));
    EXPECT_EQ(store.read(service, account), R"({"userId":"x","installTime":1})");
}

TEST_F(SecretServiceStore, LabelsTheItemAndSetsItsAttributes) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "value"));
    const std::string name(service);
    EXPECT_EQ(session.itemLabel(name, "userDetails"), "VornaSDK identity");
    EXPECT_EQ(session.itemAttribute(name, "userDetails", "service"), "io.vorna.vornasdk");
    EXPECT_EQ(session.itemAttribute(name, "userDetails", "account"), "userDetails");
    EXPECT_EQ(session.itemAttribute(name, "userDetails", "application"), application);
}

TEST_F(SecretServiceStore, PreservesEveryByte) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    const std::string values[] = {"",
                                  everyByte,
                                  std::string(5, '\0'),
                                  "trailing newline\n",
                                  "Grüße",
                                  std::string(std::size_t{64} * 1024, 'x')};
    for (const std::string& value : values) {
        ASSERT_TRUE(store.add(service, account, value)) << value.size();
        EXPECT_EQ(store.read(service, account), value) << value.size();
        ASSERT_TRUE(store.remove(service, account)) << value.size();
    }
}

TEST_F(SecretServiceStore, NeverReplaces) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "first"));
    EXPECT_EQ(store.add(service, account, "second"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_EQ(store.read(service, account), "first");
}

TEST_F(SecretServiceStore, RemovesOnlyTheItemOfThatName) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "one"));
    ASSERT_TRUE(store.add(service, "another", "two"));
    EXPECT_TRUE(store.remove(service, account));
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(store.read(service, "another"), "two");
}

TEST_F(SecretServiceStore, SeparatesTheItemsOfApplications) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    SecretServiceCredentialStore neighbour("com.example.neighbour");
    ASSERT_TRUE(store.add(service, account, "mine"));
    EXPECT_EQ(neighbour.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    ASSERT_TRUE(neighbour.add(service, account, "theirs"));
    EXPECT_EQ(store.read(service, account), "mine");
    EXPECT_TRUE(neighbour.remove(service, account));
    EXPECT_EQ(store.read(service, account), "mine");
}

TEST_F(SecretServiceStore, SharesAnItemWithoutAnApplication) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    session.addItem("io.vorna.vornasdk", "userDetails", "", "restored by hand");
    EXPECT_EQ(store.read(service, account), "restored by hand");
    EXPECT_EQ(store.add(service, account, "new"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_TRUE(store.remove(service, account));
    EXPECT_EQ(session.itemCount("io.vorna.vornasdk", "userDetails"), 0U);
}

TEST_F(SecretServiceStore, PrefersItsOwnItemToASharedOne) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "own"));
    session.addItem("io.vorna.vornasdk", "userDetails", "", "shared");
    EXPECT_EQ(store.read(service, account), "own");
    EXPECT_TRUE(store.remove(service, account));
    EXPECT_EQ(session.itemCount("io.vorna.vornasdk", "userDetails"), 0U);
}

TEST_F(SecretServiceStore, PersistsBeyondTheServiceAndTheProcess) {
    ForkedProcess process([](const std::string& busAddress) {
        support::setVariable("DBUS_SESSION_BUS_ADDRESS", busAddress);
        SecretServiceCredentialStore store(application);
        return store.add(service, account, "kept") ? 0 : 1;
    });
    KeyringSession session;
    SecretServiceCredentialStore store(application);
    process.start(session.busAddress());
    ASSERT_EQ(process.wait(), 0);
    session.stopKeyring();
    session.startKeyring();
    EXPECT_EQ(store.read(service, account), "kept");
}

TEST_F(SecretServiceStore, NeverPromptsWhileTheKeyringIsLocked) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "kept"));
    session.lockKeyring();
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::interactionNotAllowed));
    EXPECT_EQ(store.add(service, account, "new"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::interactionNotAllowed));
    EXPECT_EQ(store.read(service, "another"), Unexpected(CredentialStatus::interactionNotAllowed));
    EXPECT_EQ(store.add(service, "another", "new"), Unexpected(CredentialStatus::interactionNotAllowed));
    EXPECT_EQ(session.promptCount(), 0U);
}

TEST_F(SecretServiceStore, ReadsAgainOnceTheKeyringIsUnlocked) {
    KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "kept"));
    session.lockKeyring();
    ASSERT_EQ(store.read(service, account), Unexpected(CredentialStatus::interactionNotAllowed));
    session.stopKeyring();
    session.startKeyring();
    EXPECT_EQ(store.read(service, account), "kept");
}

TEST_F(SecretServiceStore, CreatesNoCollection) {
    const KeyringSession session(KeyringSession::Keyring::isNew);
    SecretServiceCredentialStore store(application);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(store.add(service, account, "new"), Unexpected(CredentialStatus::interactionNotAllowed));
    EXPECT_EQ(session.promptCount(), 0U);
}

TEST_F(SecretServiceStore, IsNotAvailableWithoutTheService) {
    const KeyringSession session(KeyringSession::Keyring::absent);
    SecretServiceCredentialStore store(application);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(store.add(service, account, "value"), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notAvailable));
}

TEST_F(SecretServiceStore, IsNotAvailableOnceTheBusHasStopped) {
    KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "value"));
    session.stopBus();
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable));
}

TEST_F(SecretServiceStore, SurvivesTheEndOfTheBusDuringACall) {
    KeyringSession session;
    SecretServiceCredentialStore store(application);
    session.freezeKeyring();
    std::thread breaker([&session] { session.stopBus(); });
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable));
    breaker.join();
}

TEST_F(SecretServiceStore, GivesUpAtTheBoundWhenTheKeyringHangs) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "value"));
    session.freezeKeyring();
    const auto began = steady_clock::now();
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_GE(since(began), milliseconds(2000));
    EXPECT_LT(since(began), milliseconds(3500));
    session.thawKeyring();
    EXPECT_EQ(store.read(service, account), "value");
}

TEST_F(SecretServiceStore, SpendsOneBoundOnAReadAndTheCallsAfterItWhenTheKeyringHangs) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    session.freezeKeyring();
    const auto began = steady_clock::now();
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable));
    const auto afterRead = steady_clock::now();
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(store.add(service, account, "value"), Unexpected(CredentialStatus::notAvailable));
    EXPECT_LT(since(afterRead), milliseconds(1500));
    EXPECT_GE(since(began), milliseconds(2000));
    session.thawKeyring();
    EXPECT_FALSE(store.read(service, account)) << "the addition was not even tried";
    EXPECT_TRUE(store.add(service, account, "value")) << "the read has begun a new series";
}

TEST_F(SecretServiceStore, GivesUpAtTheBoundWhenTheBusHangs) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    session.freezeBus();
    const auto began = steady_clock::now();
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_GE(since(began), milliseconds(2000));
    EXPECT_LT(since(began), milliseconds(3500));
    session.thawBus();
}

TEST_F(SecretServiceStore, LetsTheProcessExitWhileCallsHang) {
    ForkedProcess process([](const std::string& busAddress) {
        support::setVariable("DBUS_SESSION_BUS_ADDRESS", busAddress);
        SecretServiceCredentialStore hasty(application, milliseconds(100));
        const bool hangs = hasty.read(service, account) == Unexpected(CredentialStatus::notAvailable);
        // When the process exits, these calls have begun or are about to: both must be fine.
        for (int count = 0; count < 4; ++count) {
            std::thread([] {
                std::ignore = SecretServiceCredentialStore(application).read(service, account);
            }).detach();
        }
        return hangs ? 0 : 1;
    });
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    session.freezeKeyring();
    const auto began = steady_clock::now();
    process.start(session.busAddress());
    EXPECT_EQ(process.wait(), 0);
    EXPECT_LT(since(began), milliseconds(1500));
}

TEST_F(SecretServiceStore, ServesSeveralThreadsConcurrently) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    const auto use = [&store](const std::string& name) {
        for (int round = 0; round < 3; ++round) {
            EXPECT_TRUE(store.add(service, name, name));
            EXPECT_EQ(store.read(service, name), name);
            EXPECT_TRUE(store.remove(service, name));
        }
    };
    std::thread one(use, "one");
    std::thread two(use, "two");
    use("three");
    one.join();
    two.join();
}

TEST_F(SecretServiceStore, RejectsNamesThatCannotBeAttributes) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    for (const std::string& name : {std::string("\xFF"), std::string("a\0b", 3)}) {
        EXPECT_EQ(store.add(service, name, "value"), Unexpected(CredentialStatus::notPermitted));
        EXPECT_EQ(store.read(name, account), Unexpected(CredentialStatus::notPermitted));
        EXPECT_EQ(store.remove(service, name), Unexpected(CredentialStatus::notPermitted));
    }
}

/// None of these addresses is a running bus. A program that was started to provide one would leave a trace.
TEST(SecretServiceStoreWithoutABus, IsImmediatelyUnavailableAndStartsNone) {
    const support::TemporaryFolder temporary;
    const std::filesystem::path& folder = temporary.path();
    const std::filesystem::path trace = folder / "started";
    const std::filesystem::path launcher = folder / "dbus-launch";
    support::writeFile(launcher, "#!/bin/sh\ntouch " + trace.string() + "\n");
    std::filesystem::permissions(launcher, std::filesystem::perms::owner_all);
    const std::string path = folder.string() + ":" + support::variable("PATH");
    support::setVariable("PATH", path);
    support::setVariable("DISPLAY", ":987");
    support::setVariable("XDG_RUNTIME_DIR", folder);

    const std::string addresses[] = {"",
                                     "autolaunch:",
                                     "autolaunch:scope=*user",
                                     "unix:path=/nonexistent/bus;autolaunch:",
                                     "unixexec:path=" + launcher.string(),
                                     "unix:path=/nonexistent/bus",
                                     "no address at all",
                                     "tcp:host=127.0.0.1,port=1"};
    for (const std::string& address : addresses) {
        support::setVariable("DBUS_SESSION_BUS_ADDRESS", address);
        SecretServiceCredentialStore store(application);
        const auto began = steady_clock::now();
        EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable)) << address;
        EXPECT_EQ(store.add(service, account, "value"), Unexpected(CredentialStatus::notAvailable))
            << address;
        EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notAvailable)) << address;
        EXPECT_LT(since(began), milliseconds(1000)) << address;
    }
    support::unsetVariable("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(SecretServiceCredentialStore(application).read(service, account),
              Unexpected(CredentialStatus::notAvailable));
    EXPECT_FALSE(std::filesystem::exists(trace));
}

TEST_F(SecretServiceStore, FindsTheBusInTheRuntimeFolder) {
    const KeyringSession session;
    SecretServiceCredentialStore store(application);
    ASSERT_TRUE(store.add(service, account, "value"));
    const std::filesystem::path runtime = support::variable("XDG_RUNTIME_DIR");
    const std::string socket = session.busAddress().substr(std::string_view("unix:path=").size());
    std::filesystem::create_symlink(socket, runtime / "bus");
    support::unsetVariable("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(SecretServiceCredentialStore(application).read(service, account), "value");
}

}  // namespace
}  // namespace vorna
