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

    SecretServiceCredentialStore store{application};
};

TEST_F(SecretServiceStore, HasNothingAtFirst) {
    const KeyringSession session;
    const CredentialStore::ReadResult result = store.read(service, account);
    EXPECT_EQ(result.status, credentialStatus::itemNotFound);
    EXPECT_FALSE(result.value);
    EXPECT_EQ(store.remove(service, account), credentialStatus::itemNotFound);
}

TEST_F(SecretServiceStore, GivesBackWhatWasAdded) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, R"({"userId":"x","installTime":1})"), credentialStatus::success);
    const CredentialStore::ReadResult result = store.read(service, account);
    EXPECT_EQ(result.status, credentialStatus::success);
    EXPECT_EQ(result.value, R"({"userId":"x","installTime":1})");
}

TEST_F(SecretServiceStore, LabelsTheItemAndGivesItTheAttributesItIsFoundBy) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, "value"), credentialStatus::success);
    const std::string name(service);
    EXPECT_EQ(session.itemLabel(name, "userDetails"), "VornaSDK identity");
    EXPECT_EQ(session.itemAttribute(name, "userDetails", "service"), "io.vorna.vornasdk");
    EXPECT_EQ(session.itemAttribute(name, "userDetails", "account"), "userDetails");
    EXPECT_EQ(session.itemAttribute(name, "userDetails", "application"), application);
}

TEST_F(SecretServiceStore, KeepsEveryByteAsItIs) {
    const KeyringSession session;
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
        ASSERT_EQ(store.add(service, account, value), credentialStatus::success) << value.size();
        const CredentialStore::ReadResult result = store.read(service, account);
        EXPECT_EQ(result.status, credentialStatus::success) << value.size();
        EXPECT_EQ(result.value, value) << value.size();
        ASSERT_EQ(store.remove(service, account), credentialStatus::success) << value.size();
    }
}

TEST_F(SecretServiceStore, NeverReplaces) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, "first"), credentialStatus::success);
    EXPECT_EQ(store.add(service, account, "second"), credentialStatus::duplicateItem);
    EXPECT_EQ(store.read(service, account).value, "first");
}

TEST_F(SecretServiceStore, RemovesOnlyTheItemOfThatName) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, "one"), credentialStatus::success);
    ASSERT_EQ(store.add(service, "another", "two"), credentialStatus::success);
    EXPECT_EQ(store.remove(service, account), credentialStatus::success);
    EXPECT_EQ(store.read(service, account).status, credentialStatus::itemNotFound);
    EXPECT_EQ(store.read(service, "another").value, "two");
}

TEST_F(SecretServiceStore, KeepsTheItemsOfApplicationsApart) {
    const KeyringSession session;
    SecretServiceCredentialStore neighbour("com.example.neighbour");
    ASSERT_EQ(store.add(service, account, "mine"), credentialStatus::success);
    EXPECT_EQ(neighbour.read(service, account).status, credentialStatus::itemNotFound);
    ASSERT_EQ(neighbour.add(service, account, "theirs"), credentialStatus::success);
    EXPECT_EQ(store.read(service, account).value, "mine");
    EXPECT_EQ(neighbour.remove(service, account), credentialStatus::success);
    EXPECT_EQ(store.read(service, account).value, "mine");
}

TEST_F(SecretServiceStore, TakesAnItemOfNoApplicationForItsOwn) {
    const KeyringSession session;
    session.addItem("io.vorna.vornasdk", "userDetails", "", "restored by hand");
    EXPECT_EQ(store.read(service, account).value, "restored by hand");
    EXPECT_EQ(store.add(service, account, "new"), credentialStatus::duplicateItem);
    EXPECT_EQ(store.remove(service, account), credentialStatus::success);
    EXPECT_EQ(session.itemCount("io.vorna.vornasdk", "userDetails"), 0U);
}

TEST_F(SecretServiceStore, PrefersItsOwnItemToOneOfNoApplication) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, "own"), credentialStatus::success);
    session.addItem("io.vorna.vornasdk", "userDetails", "", "anybody's");
    EXPECT_EQ(store.read(service, account).value, "own");
    EXPECT_EQ(store.remove(service, account), credentialStatus::success);
    EXPECT_EQ(session.itemCount("io.vorna.vornasdk", "userDetails"), 0U);
}

TEST_F(SecretServiceStore, OutlivesTheServiceAndTheProcess) {
    ForkedProcess process([this](const std::string& busAddress) {
        support::setVariable("DBUS_SESSION_BUS_ADDRESS", busAddress);
        return store.add(service, account, "kept") == credentialStatus::success ? 0 : 1;
    });
    KeyringSession session;
    process.start(session.busAddress());
    ASSERT_EQ(process.wait(), 0);
    session.stopKeyring();
    session.startKeyring();
    EXPECT_EQ(store.read(service, account).value, "kept");
}

TEST_F(SecretServiceStore, AsksNobodyWhileTheKeyringIsLocked) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, "kept"), credentialStatus::success);
    session.lockKeyring();
    EXPECT_EQ(store.read(service, account).status, credentialStatus::interactionNotAllowed);
    EXPECT_EQ(store.add(service, account, "new"), credentialStatus::duplicateItem);
    EXPECT_EQ(store.remove(service, account), credentialStatus::interactionNotAllowed);
    EXPECT_EQ(store.read(service, "another").status, credentialStatus::interactionNotAllowed);
    EXPECT_EQ(store.add(service, "another", "new"), credentialStatus::interactionNotAllowed);
    EXPECT_EQ(session.promptCount(), 0U);
}

TEST_F(SecretServiceStore, ReadsAgainOnceTheKeyringIsUnlocked) {
    KeyringSession session;
    ASSERT_EQ(store.add(service, account, "kept"), credentialStatus::success);
    session.lockKeyring();
    ASSERT_EQ(store.read(service, account).status, credentialStatus::interactionNotAllowed);
    session.stopKeyring();
    session.startKeyring();
    EXPECT_EQ(store.read(service, account).value, "kept");
}

TEST_F(SecretServiceStore, MakesNoCollectionForTheUser) {
    const KeyringSession session(KeyringSession::Keyring::isNew);
    EXPECT_EQ(store.read(service, account).status, credentialStatus::itemNotFound);
    EXPECT_EQ(store.add(service, account, "new"), credentialStatus::interactionNotAllowed);
    EXPECT_EQ(session.promptCount(), 0U);
}

TEST_F(SecretServiceStore, IsNotAvailableWithoutTheService) {
    const KeyringSession session(KeyringSession::Keyring::absent);
    EXPECT_EQ(store.read(service, account).status, credentialStatus::notAvailable);
    EXPECT_EQ(store.add(service, account, "value"), credentialStatus::notAvailable);
    EXPECT_EQ(store.remove(service, account), credentialStatus::notAvailable);
}

TEST_F(SecretServiceStore, IsNotAvailableOnceTheBusHasGone) {
    KeyringSession session;
    ASSERT_EQ(store.add(service, account, "value"), credentialStatus::success);
    session.stopBus();
    EXPECT_EQ(store.read(service, account).status, credentialStatus::notAvailable);
}

TEST_F(SecretServiceStore, SurvivesTheEndOfTheBusDuringACall) {
    KeyringSession session;
    session.freezeKeyring();
    std::thread breaker([&session] { session.stopBus(); });
    EXPECT_EQ(store.read(service, account).status, credentialStatus::notAvailable);
    breaker.join();
}

TEST_F(SecretServiceStore, GivesUpAtTheBoundWhenTheKeyringHangs) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, "value"), credentialStatus::success);
    session.freezeKeyring();
    const auto began = steady_clock::now();
    EXPECT_EQ(store.read(service, account).status, credentialStatus::notAvailable);
    EXPECT_GE(since(began), milliseconds(2000));
    EXPECT_LT(since(began), milliseconds(3500));
    session.thawKeyring();
    EXPECT_EQ(store.read(service, account).value, "value");
}

TEST_F(SecretServiceStore, GivesUpAtTheBoundWhenTheBusHangs) {
    const KeyringSession session;
    session.freezeBus();
    const auto began = steady_clock::now();
    EXPECT_EQ(store.read(service, account).status, credentialStatus::notAvailable);
    EXPECT_GE(since(began), milliseconds(2000));
    EXPECT_LT(since(began), milliseconds(3500));
    session.thawBus();
}

TEST_F(SecretServiceStore, LetsTheProcessExitWhileCallsHang) {
    ForkedProcess process([](const std::string& busAddress) {
        support::setVariable("DBUS_SESSION_BUS_ADDRESS", busAddress);
        SecretServiceCredentialStore hasty(application, milliseconds(100));
        const bool hangs = hasty.read(service, account).status == credentialStatus::notAvailable;
        // When the process exits, these calls are on their way, or about to be: both must be fine.
        for (int count = 0; count < 4; ++count) {
            std::thread([] { SecretServiceCredentialStore(application).read(service, account); }).detach();
        }
        return hangs ? 0 : 1;
    });
    const KeyringSession session;
    session.freezeKeyring();
    const auto began = steady_clock::now();
    process.start(session.busAddress());
    EXPECT_EQ(process.wait(), 0);
    EXPECT_LT(since(began), milliseconds(1500));
}

TEST_F(SecretServiceStore, ServesSeveralThreadsAtOnce) {
    const KeyringSession session;
    const auto use = [this](const std::string& name) {
        for (int round = 0; round < 3; ++round) {
            EXPECT_EQ(store.add(service, name, name), credentialStatus::success);
            EXPECT_EQ(store.read(service, name).value, name);
            EXPECT_EQ(store.remove(service, name), credentialStatus::success);
        }
    };
    std::thread one(use, "one");
    std::thread two(use, "two");
    use("three");
    one.join();
    two.join();
}

TEST_F(SecretServiceStore, TakesNoNamesThatCannotBeAttributes) {
    const KeyringSession session;
    for (const std::string& name : {std::string("\xFF"), std::string("a\0b", 3)}) {
        EXPECT_EQ(store.add(service, name, "value"), credentialStatus::notPermitted);
        EXPECT_EQ(store.read(name, account).status, credentialStatus::notPermitted);
        EXPECT_EQ(store.remove(service, name), credentialStatus::notPermitted);
    }
}

/// None of these can be a running bus, and a program that would start one is recognised by its trace.
TEST(SecretServiceStoreWithoutABus, IsNotAvailableAtOnceAndStartsNone) {
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

    SecretServiceCredentialStore store(application);
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
        const auto began = steady_clock::now();
        EXPECT_EQ(store.read(service, account).status, credentialStatus::notAvailable) << address;
        EXPECT_EQ(store.add(service, account, "value"), credentialStatus::notAvailable) << address;
        EXPECT_EQ(store.remove(service, account), credentialStatus::notAvailable) << address;
        EXPECT_LT(since(began), milliseconds(1000)) << address;
    }
    support::unsetVariable("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(store.read(service, account).status, credentialStatus::notAvailable);
    EXPECT_FALSE(std::filesystem::exists(trace));
}

TEST_F(SecretServiceStore, FindsTheBusInTheRuntimeFolder) {
    const KeyringSession session;
    ASSERT_EQ(store.add(service, account, "value"), credentialStatus::success);
    const std::filesystem::path runtime = support::variable("XDG_RUNTIME_DIR");
    const std::string socket = session.busAddress().substr(std::string_view("unix:path=").size());
    std::filesystem::create_symlink(socket, runtime / "bus");
    support::unsetVariable("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(store.read(service, account).value, "value");
}

}  // namespace
}  // namespace vorna
