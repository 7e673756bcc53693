// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/AutomaticCredentialStore.h>

#include <tests/support/ForkedProcess.h>
#include <tests/support/InMemoryCredentialStore.h>
#include <tests/support/KeyringSession.h>
#include <tests/support/ProcessVariables.h>
#include <tests/support/SettableClock.h>
#include <tests/support/TemporaryFolder.h>

#include <vorna/device/KeychainHelper.h>
#include <vorna/events/ULID.h>
#include <vorna/platform/file/FileCredentialStore.h>
#include <vorna/platform/glib/SecretServiceCredentialStore.h>
#include <vorna/platform/linux/GetrandomSource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

namespace vorna {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using support::ForkedProcess;
using support::InMemoryCredentialStore;
using support::KeyringSession;
using support::SettableClock;
using support::TemporaryFolder;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::string_view service = "io.vorna.vornasdk";
constexpr std::string_view account = "userDetails";

constexpr milliseconds longerThanAnyTest{60'000};
constexpr milliseconds brief{30};

class AutomaticStore : public ::testing::Test {
  protected:
    std::shared_ptr<InMemoryCredentialStore> file = std::make_shared<InMemoryCredentialStore>();
    std::shared_ptr<InMemoryCredentialStore> keyring = std::make_shared<InMemoryCredentialStore>();
    AutomaticCredentialStore store{file, keyring, longerThanAnyTest};
    AutomaticCredentialStore hastyStore{file, keyring, brief};

    void TearDown() override { keyring->resume(); }

    static bool comesToHold(const std::shared_ptr<InMemoryCredentialStore>& where,
                            const std::optional<std::string>& value) {
        return where->waitUntil(
            [&value](const InMemoryCredentialStore& now) { return now.value(service, account) == value; });
    }

    static bool comesToHave(const std::shared_ptr<InMemoryCredentialStore>& where,
                            const std::vector<std::string>& operations) {
        return where->waitUntil(
            [&operations](const InMemoryCredentialStore& now) { return now.operations() == operations; });
    }
};

TEST_F(AutomaticStore, ReadsTheFileWithoutWaitingForTheKeyring) {
    file->put(service, account, "value");
    keyring->hold();
    EXPECT_EQ(store.read(service, account), "value");
    EXPECT_TRUE(store.read(service, account));
}

TEST_F(AutomaticStore, NeverCallsTheKeyringOnTheCallersThread) {
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    std::ignore = store.add(service, account, "value");
    std::ignore = store.read(service, account);
    std::ignore = store.remove(service, account);
    const std::vector<InMemoryCredentialStore::Call> calls = keyring->calls();
    EXPECT_THAT(calls, Not(IsEmpty()));
    for (const InMemoryCredentialStore::Call& call : calls) {
        EXPECT_NE(call.thread, std::this_thread::get_id()) << call.operation;
    }
}

TEST_F(AutomaticStore, ReadsTheKeyringIfTheFileIsGoneAndRestoresTheFile) {
    keyring->put(service, account, "value");
    EXPECT_EQ(store.read(service, account), "value");
    EXPECT_TRUE(comesToHold(file, "value"));
    EXPECT_EQ(keyring->value(service, account), "value");
}

TEST_F(AutomaticStore, CopiesAnItemThatOnlyTheFileHasToTheKeyring) {
    file->put(service, account, "value");
    std::ignore = store.read(service, account);
    EXPECT_TRUE(comesToHold(keyring, "value"));
}

TEST_F(AutomaticStore, PrefersTheFileIfBothDiffer) {
    file->put(service, account, "the file's");
    keyring->put(service, account, "the keyring's");
    EXPECT_EQ(store.read(service, account), "the file's");
    EXPECT_TRUE(comesToHold(keyring, "the file's"));
    EXPECT_EQ(file->value(service, account), "the file's");
}

TEST_F(AutomaticStore, LeavesBothAloneIfTheyAgree) {
    file->put(service, account, "value");
    keyring->put(service, account, "value");
    std::ignore = store.read(service, account);
    ASSERT_TRUE(comesToHave(keyring, {"read"}));
    // A second round shows that the first has ended.
    std::ignore = store.read(service, account);
    ASSERT_TRUE(comesToHave(keyring, {"read", "read"}));
    EXPECT_THAT(file->operations(), Each(std::string("read")));
}

TEST_F(AutomaticStore, ReplacesAnUntrustedFileWithTheKeyringsItem) {
    file->put(service, account, "planted");
    file->readStatus(CredentialStatus::notTrusted);
    keyring->put(service, account, "value");
    EXPECT_EQ(store.read(service, account), "value");
    EXPECT_TRUE(comesToHold(file, "value"));
}

TEST_F(AutomaticStore, DoesNotRemoveAFileThatIsTemporarilyUnreadable) {
    file->put(service, account, "unreadable now");
    file->readStatus(CredentialStatus::notAvailable);
    keyring->put(service, account, "the keyring's");
    EXPECT_EQ(store.read(service, account), "the keyring's");
    EXPECT_TRUE(comesToHave(file, {"read", "read", "read", "add", "read"}));
    EXPECT_EQ(file->value(service, account), "unreadable now");
}

TEST_F(AutomaticStore, AddsToBothAndRemovesFromBoth) {
    EXPECT_TRUE(store.add(service, account, "value"));
    EXPECT_EQ(file->value(service, account), "value");
    EXPECT_EQ(keyring->value(service, account), "value");
    EXPECT_TRUE(store.remove(service, account));
    EXPECT_EQ(file->value(service, account), std::nullopt);
    EXPECT_EQ(keyring->value(service, account), std::nullopt);
}

TEST_F(AutomaticStore, CopiesAnItemToTheKeyringOnceItIsUnlocked) {
    keyring->answerOnly(CredentialStatus::interactionNotAllowed);
    EXPECT_TRUE(store.add(service, account, "value"));
    keyring->answerOnly(std::nullopt);
    EXPECT_EQ(store.read(service, account), "value");
    EXPECT_TRUE(comesToHold(keyring, "value"));
}

TEST_F(AutomaticStore, CopiesAnItemToTheFileOnceItIsWritable) {
    file->addStatus(CredentialStatus::notPermitted);
    EXPECT_TRUE(store.add(service, account, "value"));
    EXPECT_EQ(file->value(service, account), std::nullopt);
    file->addStatus(std::nullopt);
    EXPECT_EQ(store.read(service, account), "value");
    EXPECT_TRUE(comesToHold(file, "value"));
}

TEST_F(AutomaticStore, LeavesTheKeyringAloneIfTheFileAlreadyHasAnItem) {
    file->put(service, account, "of another process");
    EXPECT_EQ(store.add(service, account, "mine"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_TRUE(comesToHold(keyring, "of another process"));
    for (const InMemoryCredentialStore::Call& call : keyring->calls()) {
        EXPECT_NE(call.value, "mine");
    }
}

TEST_F(AutomaticStore, ReplacesTheKeyringsItemWhenOneIsAdded) {
    keyring->put(service, account, "of another process");
    EXPECT_TRUE(store.add(service, account, "mine"));
    EXPECT_TRUE(comesToHold(keyring, "mine"));
}

TEST_F(AutomaticStore, KeepsTheNewIdentityWhenASlowKeyringReturnsAnOldOne) {
    keyring->put(service, account, "old");
    keyring->hold();
    EXPECT_EQ(hastyStore.read(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(hastyStore.remove(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_TRUE(hastyStore.add(service, account, "new"));
    EXPECT_EQ(hastyStore.read(service, account), "new");
    keyring->resume();
    EXPECT_TRUE(comesToHold(keyring, "new"));
    EXPECT_EQ(file->value(service, account), "new");
    EXPECT_EQ(hastyStore.read(service, account), "new");
}

TEST_F(AutomaticStore, SpendsOneTimeoutOnAReadAndTheCallsAfterIt) {
    AutomaticCredentialStore slowStore(file, keyring, milliseconds(1000));
    keyring->hold();
    const auto began = steady_clock::now();
    EXPECT_EQ(slowStore.read(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_GE(steady_clock::now() - began, milliseconds(1000));
    const auto afterRead = steady_clock::now();
    std::ignore = slowStore.remove(service, account);
    std::ignore = slowStore.add(service, account, "value");
    EXPECT_LT(steady_clock::now() - afterRead, milliseconds(900));
}

TEST_F(AutomaticStore, NeverMakesAnAbandonedCall) {
    keyring->hold();
    std::ignore = hastyStore.read(service, account);
    std::ignore = hastyStore.remove(service, account);
    std::ignore = hastyStore.add(service, account, "new");
    keyring->resume();
    ASSERT_TRUE(comesToHold(keyring, "new"));
    // The abandoned read had already begun; the other calls are the repair's.
    EXPECT_THAT(keyring->operations(), ElementsAre("read", "read", "add"));
}

TEST_F(AutomaticStore, ARunningRepairDoesNotRestoreARemovedItem) {
    AutomaticCredentialStore slowStore(file, keyring, milliseconds(1000));
    keyring->put(service, account, "old");
    keyring->hold(1);
    ASSERT_EQ(slowStore.read(service, account), "old");
    // The repair has found no item in the file, and is now waiting for the keyring.
    ASSERT_TRUE(comesToHave(keyring, {"read", "read"}));
    std::ignore = slowStore.remove(service, account);
    keyring->resume();
    // Calls to the keyring are made in turn, so after this one the repair is over.
    EXPECT_EQ(slowStore.read(service, "another"), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(file->value(service, account), std::nullopt);
    EXPECT_TRUE(slowStore.add(service, account, "new"));
    EXPECT_TRUE(comesToHold(keyring, "new"));
    EXPECT_EQ(file->value(service, account), "new");
}

TEST_F(AutomaticStore, ARunningRepairEndsWithTheAddedItem) {
    file->put(service, account, "no identity");
    keyring->put(service, account, "old");
    keyring->hold();
    ASSERT_EQ(hastyStore.read(service, account), "no identity");
    ASSERT_TRUE(comesToHave(keyring, {"read"}));
    std::ignore = hastyStore.remove(service, account);
    EXPECT_TRUE(hastyStore.add(service, account, "new"));
    keyring->resume();
    EXPECT_TRUE(comesToHold(keyring, "new"));
    EXPECT_EQ(file->value(service, account), "new");
    // Two repairs. The removal was abandoned before its turn.
    EXPECT_THAT(keyring->operations(), ElementsAre("read", "remove", "add", "read", "remove", "add"));
}

TEST_F(AutomaticStore, DoesNotWaitForAHungKeyringOnDestruction) {
    keyring->hold();
    const auto began = steady_clock::now();
    {
        AutomaticCredentialStore shortLived(file, keyring, milliseconds(10));
        std::ignore = shortLived.read(service, account);
    }
    EXPECT_LT(steady_clock::now() - began, std::chrono::seconds(10));
    keyring->resume();
}

TEST(AutomaticStoreProcess, ExitsWhileTheKeyringHangs) {
    ForkedProcess process([](const std::string&) {
        const auto file = std::make_shared<InMemoryCredentialStore>();
        const auto keyring = std::make_shared<InMemoryCredentialStore>();
        file->put(service, account, "value");
        keyring->hold();
        static AutomaticCredentialStore store(file, keyring);
        return store.read(service, account) == "value" ? 0 : 1;
    });
    const auto began = steady_clock::now();
    process.start();
    EXPECT_EQ(process.wait(), 0);
    EXPECT_LT(steady_clock::now() - began, milliseconds(1500));
}

struct Outcome {
    const char* name;
    CredentialStatus file;
    CredentialStatus keyring;
    CredentialStatus ofReading;
    CredentialStatus ofAdding;
    CredentialStatus ofRemoving;
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.name;
}

class AutomaticStoreStatus : public AutomaticStore, public ::testing::WithParamInterface<Outcome> {};

TEST_P(AutomaticStoreStatus, ComesFromTheStoreThatMayHaveTheItem) {
    file->answerOnly(GetParam().file);
    keyring->answerOnly(GetParam().keyring);
    EXPECT_EQ(store.read(service, account), Unexpected(GetParam().ofReading));
    EXPECT_EQ(store.add(service, account, "value"), Unexpected(GetParam().ofAdding));
    EXPECT_EQ(store.remove(service, account), Unexpected(GetParam().ofRemoving));
}

constexpr CredentialStatus none = CredentialStatus::itemNotFound;
constexpr CredentialStatus locked = CredentialStatus::interactionNotAllowed;
constexpr CredentialStatus noKeyring = CredentialStatus::notAvailable;
constexpr CredentialStatus readOnly = CredentialStatus::notPermitted;
constexpr CredentialStatus planted = CredentialStatus::notTrusted;

INSTANTIATE_TEST_SUITE_P(
    AutomaticStore, AutomaticStoreStatus,
    ::testing::Values(Outcome{"NeitherHasIt", none, none, none, none, none},
                      Outcome{"NoKeyring", none, noKeyring, none, none, none},
                      Outcome{"LockedKeyring", none, locked, locked, none, locked},
                      Outcome{"ReadOnlyFile", readOnly, none, readOnly, readOnly, readOnly},
                      Outcome{"ReadOnlyFileAndLockedKeyring", readOnly, locked, readOnly, readOnly, readOnly},
                      Outcome{"PlantedFileAndNoKeyring", planted, noKeyring, planted, planted, planted}),
    [](const auto& row) { return row.param.name; });

// What is in the two places, as the reader of a whole record finds it.

constexpr const char* wholeA = "whole A";
constexpr const char* wholeB = "whole B";
constexpr const char* damaged = "wh";
/// No item.
constexpr const char* nothing = nullptr;

struct Places {
    const char* name;
    const char* file;
    const char* keyring;
    /// What a reader gets, and what is in both at last.
    const char* read;
    const char* fileLater;
    const char* keyringLater;
    std::optional<CredentialStatus> fileStatus = std::nullopt;
    std::optional<CredentialStatus> keyringStatus = std::nullopt;
};

std::ostream& operator<<(std::ostream& stream, const Places& row) {
    return stream << row.name;
}

class WholeItems : public AutomaticStore {
  protected:
    WholeItems() {
        for (AutomaticCredentialStore* const each : {&store, &hastyStore}) {
            each->recogniseWholeValues([](std::string_view value) { return value.starts_with("whole"); });
        }
    }
};

class TwoPlaces : public WholeItems, public ::testing::WithParamInterface<Places> {
  protected:
    static std::optional<std::string> optional(const char* text) {
        return text == nullptr ? std::nullopt : std::optional<std::string>(text);
    }

    static void put(InMemoryCredentialStore& where, const char* text) {
        if (text != nullptr) {
            where.put(service, account, text);
        }
    }
};

TEST_P(TwoPlaces, RepairEachOtherWithWholeItemsOnly) {
    put(*file, GetParam().file);
    put(*keyring, GetParam().keyring);
    file->readStatus(GetParam().fileStatus);
    keyring->readStatus(GetParam().keyringStatus);
    const Result<std::string, CredentialStatus> read = store.read(service, account);
    EXPECT_EQ(read ? std::optional(*read) : std::nullopt, optional(GetParam().read));
    // Calls to the keyring are made in turn, so after this one the repair is over.
    std::ignore = store.read(service, "another");
    EXPECT_EQ(file->value(service, account), optional(GetParam().fileLater));
    EXPECT_EQ(keyring->value(service, account), optional(GetParam().keyringLater));
}

INSTANTIATE_TEST_SUITE_P(
    AutomaticStore, TwoPlaces,
    ::testing::Values(
        Places{"BothEmpty", nothing, nothing, nothing, nothing, nothing},
        Places{"OnlyTheFile", wholeA, nothing, wholeA, wholeA, wholeA},
        Places{"OnlyTheKeyring", nothing, wholeB, wholeB, wholeB, wholeB},
        Places{"DamagedFile", damaged, wholeB, wholeB, wholeB, wholeB},
        Places{"EmptyFile", "", wholeB, wholeB, wholeB, wholeB},
        Places{"DamagedKeyring", wholeA, damaged, wholeA, wholeA, wholeA},
        Places{"EmptyItemInTheKeyring", wholeA, "", wholeA, wholeA, wholeA},
        Places{"BothDamaged", damaged, "who", damaged, damaged, "who"},
        Places{"DamagedFileAndEmptyKeyring", damaged, nothing, damaged, damaged, nothing},
        Places{"EmptyFileAndEmptyKeyring", "", nothing, "", "", nothing},
        Places{"NoFileAndDamagedKeyring", nothing, damaged, damaged, nothing, damaged},
        Places{"DifferentItems", wholeA, wholeB, wholeA, wholeA, wholeA},
        Places{"DamagedFileAndLockedKeyring", damaged, wholeB, damaged, damaged, wholeB, std::nullopt,
               locked},
        Places{"UnreadableFile", wholeA, wholeB, wholeB, wholeA, wholeB, CredentialStatus::notAvailable},
        Places{"UnreadableFileAndDamagedKeyring", wholeA, damaged, damaged, wholeA, damaged,
               CredentialStatus::notAvailable},
        Places{"UntrustedFileAndDamagedKeyring", "planted", damaged, damaged, "planted", damaged, planted}),
    [](const auto& row) { return row.param.name; });

TEST_F(WholeItems, RepairADamagedFileOnceASlowKeyringAnswers) {
    file->put(service, account, damaged);
    keyring->put(service, account, wholeB);
    keyring->hold();
    EXPECT_EQ(hastyStore.read(service, account), damaged);
    keyring->resume();
    EXPECT_TRUE(comesToHold(file, wholeB));
    EXPECT_EQ(hastyStore.read(service, account), wholeB);
    EXPECT_EQ(keyring->value(service, account), wholeB);
}

TEST_F(WholeItems, OfAnotherProcessAreNotReplacedByARepair) {
    file->put(service, account, damaged);
    keyring->put(service, account, wholeB);
    // The first read goes through; the repair's waits.
    keyring->hold(1);
    EXPECT_EQ(store.read(service, account), wholeB);
    ASSERT_TRUE(comesToHave(keyring, {"read", "read"}));
    file->put(service, account, wholeA);
    keyring->resume();
    EXPECT_TRUE(comesToHold(keyring, wholeA));
    EXPECT_EQ(file->value(service, account), wholeA);
}

TEST_F(WholeItems, AreAddedToTheKeyringIfSomethingElseIsInTheFilesPlace) {
    file->readStatus(CredentialStatus::notTrusted);
    file->removeStatus(CredentialStatus::notTrusted);
    file->addStatus(CredentialStatus::duplicateItem);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_TRUE(store.add(service, account, wholeA));
    EXPECT_EQ(keyring->value(service, account), wholeA);
    EXPECT_EQ(store.read(service, account), wholeA);
}

TEST_F(WholeItems, StayInTheKeyringWhileTheFileCannotBeRead) {
    keyring->put(service, account, wholeB);
    file->put(service, account, wholeA);
    file->readStatus(CredentialStatus::notAvailable);
    file->removeStatus(CredentialStatus::notAvailable);
    keyring->readStatus(CredentialStatus::notAvailable);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(store.add(service, account, "whole C"), Unexpected(CredentialStatus::duplicateItem));
    file->readStatus(std::nullopt);
    keyring->readStatus(std::nullopt);
    EXPECT_EQ(file->value(service, account), wholeA);
    EXPECT_EQ(store.read(service, account), wholeA);
}

/// The identity in two files, the second of which stands in for the keyring.
class IdentityInTwoFiles : public ::testing::Test {
  protected:
    static KeyChainData load(const std::shared_ptr<CredentialStore>& store) {
        const KeychainHelper helper(store, std::make_shared<SettableClock>(),
                                    [](Date) { return std::string("a new user"); });
        return helper.loadOrCreateIdentity();
    }

    std::shared_ptr<AutomaticCredentialStore> newStore() const {
        return std::make_shared<AutomaticCredentialStore>(first, second, longerThanAnyTest);
    }

    TemporaryFolder temporary;
    std::shared_ptr<FileCredentialStore> first =
        std::make_shared<FileCredentialStore>((temporary.path() / "first").string());
    std::shared_ptr<FileCredentialStore> second =
        std::make_shared<FileCredentialStore>((temporary.path() / "second").string());
    const std::string record = R"({"userId":"an old user","installTime":5})";
};

TEST_F(IdentityInTwoFiles, IsReadFromTheWholeOneAndRepairsTheOther) {
    for (const std::string& damage : {std::string(), std::string("{}"), record.substr(0, 20),
                                      std::string("\xFF\xFE"), std::string(4096, '\0')}) {
        for (const bool isFirstDamaged : {true, false}) {
            ASSERT_TRUE(first->add(service, account, isFirstDamaged ? damage : record));
            ASSERT_TRUE(second->add(service, account, isFirstDamaged ? record : damage));
            const std::shared_ptr<CredentialStore> store = newStore();
            EXPECT_EQ(load(store).userId, "an old user") << damage;
            std::ignore = store->read(service, "another");
            EXPECT_EQ(first->read(service, account), record) << damage;
            EXPECT_EQ(second->read(service, account), record) << damage;
            ASSERT_TRUE(first->remove(service, account));
            ASSERT_TRUE(second->remove(service, account));
        }
    }
}

TEST_F(IdentityInTwoFiles, IsNotLostWhenTheProcessIsKilledDuringARepair) {
    const std::string damage = record.substr(0, 20);
    const auto repair = [this](const std::string&) {
        const std::shared_ptr<CredentialStore> store = newStore();
        const bool isKept = load(store).userId == "an old user";
        std::ignore = store->read(service, "another");
        return isKept ? 0 : 1;
    };
    const auto damageFirst = [&] {
        std::ignore = first->remove(service, account);
        return first->add(service, account, damage);
    };
    ASSERT_TRUE(second->add(service, account, record));
    ASSERT_TRUE(damageFirst());
    ForkedProcess undisturbed(repair);
    const auto began = steady_clock::now();
    undisturbed.start();
    ASSERT_EQ(undisturbed.wait(), 0);
    const auto duration = std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - began);

    const std::uint64_t seed = std::random_device()();
    std::mt19937_64 generator(seed);
    std::uniform_int_distribution<std::int64_t> anyMoment(0, duration.count());
    int repaired = 0;
    int absent = 0;
    int untouched = 0;
    for (int round = 0; round < 200; ++round) {
        ASSERT_TRUE(damageFirst());
        ForkedProcess process(repair);
        process.start();
        const auto end = steady_clock::now() + std::chrono::microseconds(anyMoment(generator));
        while (steady_clock::now() < end) {
            // A sleep would end only at certain moments.
        }
        process.kill();
        process.wait();
        const Result<std::string, CredentialStatus> found = first->read(service, account);
        repaired += found == record ? 1 : 0;
        untouched += found == damage ? 1 : 0;
        absent += found == Unexpected(CredentialStatus::itemNotFound) ? 1 : 0;
        ASSERT_EQ(second->read(service, account), record) << "seed " << seed;
    }
    std::cerr << "seed " << seed << ": " << repaired << " repaired, " << untouched << " untouched, " << absent
              << " in between\n";
    EXPECT_EQ(repaired + untouched + absent, 200);
    EXPECT_GT(untouched, 0) << "no moment was early enough";
}

/// As a crash reporter does that sends its report before the process ends.
void lingerOnAbort(int /*signal*/) {
    usleep(500'000);
    _exit(99);
}

TEST_F(IdentityInTwoFiles, IsFatalOnlyIfNeitherIsWholeAndThenNothingChangesAfterwards) {
    ForkedProcess process([this](const std::string&) {
        std::signal(SIGABRT, lingerOnAbort);
        load(newStore());
        return 0;
    });
    ASSERT_TRUE(first->add(service, account, "{}"));
    ASSERT_TRUE(second->add(service, account, record.substr(0, 20)));
    process.start();
    EXPECT_EQ(process.wait(), 99);
    EXPECT_EQ(first->read(service, account), "{}");
    EXPECT_EQ(second->read(service, account), record.substr(0, 20));
}

// The remaining tests use the real parts: a private file, gnome-keyring, and the identity stored in them.

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(milliseconds(10));
    }
    return true;
}

class AutomaticIdentity : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!KeyringSession::isPossible()) {
            GTEST_SKIP() << "dbus-daemon, dbus-monitor or gnome-keyring-daemon is not installed";
        }
    }

    TemporaryFolder temporary;
    std::filesystem::path data = temporary.path() / "data";
    std::string output;

    std::shared_ptr<AutomaticCredentialStore> newStore() const {
        return std::make_shared<AutomaticCredentialStore>(
            std::make_shared<FileCredentialStore>(data.string()),
            std::make_shared<SecretServiceCredentialStore>("app"));
    }

    static KeyChainData load(const std::shared_ptr<CredentialStore>& store) {
        const auto random = std::make_shared<GetrandomSource>();
        const KeychainHelper helper(store, std::make_shared<SettableClock>(),
                                    [random](Date date) { return ULID(date, *random).ulidString(); });
        return helper.loadOrCreateIdentity();
    }

    /// One run of the application. Repairs can complete as long as the caller keeps the store.
    KeyChainData run(const std::shared_ptr<CredentialStore>& store) {
        ::testing::internal::CaptureStdout();
        KeyChainData identity = load(store);
        output = ::testing::internal::GetCapturedStdout();
        return identity;
    }

    KeyChainData run() {
        stores.push_back(newStore());
        return run(stores.back());
    }

    static std::optional<std::string> userIn(CredentialStore& store) {
        const Result<std::string, CredentialStatus> result = store.read(service, account);
        if (!result) {
            return std::nullopt;
        }
        return KeychainHelper::decode(*result).value_or(KeyChainData{"undecodable", 0}).userId;
    }

    std::optional<std::string> userInFile() const {
        FileCredentialStore store(data.string());
        return userIn(store);
    }

    static std::optional<std::string> userInKeyring() {
        SecretServiceCredentialStore store("app");
        return userIn(store);
    }

    std::vector<std::shared_ptr<CredentialStore>> stores;
};

TEST_F(AutomaticIdentity, IsStoredInBothOnTheFirstRun) {
    const KeyringSession session;
    const KeyChainData identity = run();
    EXPECT_EQ(output, "Error reading from Keychain: -25300\n");
    EXPECT_EQ(userInFile(), identity.userId);
    EXPECT_EQ(userInKeyring(), identity.userId);
    EXPECT_EQ(run(), identity);
    EXPECT_EQ(output, "");
}

TEST_F(AutomaticIdentity, SurvivesAReinstallation) {
    const KeyringSession session;
    const KeyChainData identity = run();
    stores.clear();
    std::filesystem::remove_all(data);
    EXPECT_EQ(run(), identity);
    EXPECT_EQ(output, "");
    EXPECT_TRUE(eventually([&] { return userInFile() == identity.userId; }));
}

TEST_F(AutomaticIdentity, SurvivesTheLossOfTheKeyring) {
    const KeyringSession session;
    const KeyChainData identity = run();
    SecretServiceCredentialStore keyring("app");
    ASSERT_TRUE(keyring.remove(service, account));
    EXPECT_EQ(run(), identity);
    EXPECT_TRUE(eventually([&] { return userInKeyring() == identity.userId; }));
}

TEST_F(AutomaticIdentity, SurvivesALockedKeyring) {
    const KeyringSession session;
    const KeyChainData identity = run();
    session.lockKeyring();
    EXPECT_EQ(run(), identity);
    EXPECT_EQ(output, "");
    EXPECT_EQ(session.promptCount(), 0U);
}

TEST_F(AutomaticIdentity, CreatedWhileTheKeyringIsLockedIsCopiedToItLater) {
    KeyringSession session;
    session.lockKeyring();
    const KeyChainData identity = run();
    EXPECT_EQ(output, "Error reading from Keychain: -25308\n");
    EXPECT_EQ(userInFile(), identity.userId);
    session.stopKeyring();
    session.startKeyring();
    EXPECT_EQ(run(), identity);
    EXPECT_TRUE(eventually([&] { return userInKeyring() == identity.userId; }));
    EXPECT_EQ(session.promptCount(), 0U);
}

TEST_F(AutomaticIdentity, CreatedWhileTheKeyringIsLockedReplacesTheOneInIt) {
    KeyringSession session;
    const KeyChainData old = run();
    stores.clear();
    std::filesystem::remove_all(data);
    session.lockKeyring();
    const KeyChainData identity = run();
    ASSERT_NE(identity, old);
    session.stopKeyring();
    session.startKeyring();
    EXPECT_EQ(run(), identity);
    EXPECT_TRUE(eventually([&] { return userInKeyring() == identity.userId; }));
    stores.clear();
    std::filesystem::remove_all(data);
    EXPECT_EQ(run(), identity);
}

TEST_F(AutomaticIdentity, NeedsNoKeyring) {
    const KeyringSession session(KeyringSession::Keyring::absent);
    const KeyChainData identity = run();
    EXPECT_EQ(output, "Error reading from Keychain: -25300\n");
    EXPECT_EQ(run(), identity);
    EXPECT_EQ(output, "");
}

TEST_F(AutomaticIdentity, NeedsNoBus) {
    support::setVariable("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    const KeyChainData identity = run();
    EXPECT_EQ(output, "Error reading from Keychain: -25300\n");
    EXPECT_EQ(run(), identity);
    EXPECT_EQ(output, "");
}

TEST_F(AutomaticIdentity, ReachesAKeyringThatIsStartedLater) {
    KeyringSession session(KeyringSession::Keyring::absent);
    const KeyChainData identity = run();
    session.startKeyring();
    EXPECT_EQ(run(), identity);
    EXPECT_TRUE(eventually([&] { return userInKeyring() == identity.userId; }));
}

TEST_F(AutomaticIdentity, WaitsTwoSecondsAltogetherForAHungKeyringOnTheFirstRun) {
    KeyringSession session;
    const KeyChainData old = run();
    stores.clear();
    std::filesystem::remove_all(data);
    session.freezeKeyring();
    const auto began = steady_clock::now();
    const KeyChainData identity = run();
    const auto duration = steady_clock::now() - began;
    EXPECT_GE(duration, milliseconds(2000));
    EXPECT_LT(duration, milliseconds(3500));
    EXPECT_EQ(output, "Error reading from Keychain: -25291\n");
    EXPECT_NE(identity, old);
    session.thawKeyring();
    EXPECT_EQ(run(), identity);
    EXPECT_TRUE(eventually([&] { return userInKeyring() == identity.userId; }));
    EXPECT_EQ(userInFile(), identity.userId);
}

TEST_F(AutomaticIdentity, DoesNotWaitForTheBusIfThereIsAFile) {
    const KeyringSession session;
    const KeyChainData identity = run();
    for (const bool wholeBus : {false, true}) {
        wholeBus ? session.freezeBus() : session.freezeKeyring();
        const auto began = steady_clock::now();
        EXPECT_EQ(run(), identity);
        EXPECT_LT(steady_clock::now() - began, milliseconds(1500));
    }
    session.thawBus();
    session.thawKeyring();
}

TEST_F(AutomaticIdentity, IsTheSameForTwoProcessesThatCreateItConcurrently) {
    const auto firstRun = [this](const std::string& busAddress) {
        support::setVariable("DBUS_SESSION_BUS_ADDRESS", busAddress);
        load(newStore());
        return 0;
    };
    ::testing::internal::CaptureStdout();
    ForkedProcess one(firstRun);
    ForkedProcess two(firstRun);
    const KeyringSession session;
    one.start(session.busAddress());
    two.start(session.busAddress());
    EXPECT_EQ(one.wait(), 0);
    EXPECT_EQ(two.wait(), 0);
    ::testing::internal::GetCapturedStdout();
    const KeyChainData identity = run();
    EXPECT_EQ(output, "");
    EXPECT_EQ(run(), identity);
    EXPECT_TRUE(eventually([&] { return userInKeyring() == identity.userId; }));
    EXPECT_EQ(session.itemCount(std::string(service), std::string(account)), 1U);
}

TEST_F(AutomaticIdentity, LetsAProcessExitWhileItIsBeingRepaired) {
    ForkedProcess process([this](const std::string& busAddress) {
        support::setVariable("DBUS_SESSION_BUS_ADDRESS", busAddress);
        load(newStore());
        static const std::shared_ptr<CredentialStore> kept = newStore();
        load(kept);
        return 0;
    });
    const KeyringSession session;
    const KeyChainData identity = run();
    session.freezeKeyring();
    const auto began = steady_clock::now();
    process.start(session.busAddress());
    EXPECT_EQ(process.wait(), 0);
    EXPECT_LT(steady_clock::now() - began, milliseconds(1500));
    session.thawKeyring();
    EXPECT_EQ(run(), identity);
}

}  // namespace
}  // namespace vorna
