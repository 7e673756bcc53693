// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/FileCredentialStore.h>

#include <tests/support/ForkedProcess.h>
#include <tests/support/InTemporaryFolder.h>
#include <tests/support/SmallDisk.h>

#include <vorna/platform/FileDescriptor.h>

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
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;
using support::contentsOf;
using support::ForkedProcess;
using support::modeOf;
using support::namesIn;
using support::SmallDisk;
using support::writeFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::string_view service = "io.vorna.vornasdk";
constexpr std::string_view account = "userDetails";

class FileStore : public support::InTemporaryFolder {
  protected:
    std::filesystem::path data = root_ / "data";
    std::filesystem::path folder = data / "credentials";
    std::filesystem::path file = folder / "io.vorna.vornasdk@userDetails";
    FileCredentialStore store{data.string()};

    /// For tests that need the item's folder without an item in it.
    void makeFolder() {
        ASSERT_TRUE(store.add(service, account, "value"));
        ASSERT_TRUE(store.remove(service, account));
    }
};

TEST_F(FileStore, IsInitiallyEmptyAndCreatesNothingOnReading) {
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_FALSE(std::filesystem::exists(data));
}

TEST_F(FileStore, PreservesEveryByte) {
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    const std::string values[] = {"", everyByte, R"({"userId":"x","installTime":1})",
                                  std::string(std::size_t{1024} * 1024, 'x'),
                                  std::string(FileCredentialStore::largestValue, '\0')};
    for (const std::string& value : values) {
        ASSERT_TRUE(store.add(service, account, value)) << value.size();
        EXPECT_TRUE(FileCredentialStore(data.string()).read(service, account) == value) << value.size();
        ASSERT_TRUE(store.remove(service, account)) << value.size();
        EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    }
}

TEST_F(FileStore, NeitherStoresNorReturnsMoreThanTheMaximumSize) {
    const std::string value(FileCredentialStore::largestValue + 1, 'x');
    EXPECT_EQ(store.add(service, account, value), Unexpected(CredentialStatus::notPermitted));
    makeFolder();
    writeFile(file, value);
    chmod(file.c_str(), 0600);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
}

TEST_F(FileStore, NeverReplaces) {
    ASSERT_TRUE(store.add(service, account, "first"));
    EXPECT_EQ(store.add(service, account, "second"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_EQ(store.read(service, account), "first");
    EXPECT_THAT(namesIn(folder), SizeIs(1));
}

TEST_F(FileStore, KeepsFolderAndFilePrivateRegardlessOfTheUmask) {
    for (const mode_t mask : {mode_t{0}, mode_t{022}, mode_t{077}}) {
        const mode_t before = umask(mask);
        const Result<void, CredentialStatus> result = store.add(service, account, "value");
        umask(before);
        ASSERT_TRUE(result);
        EXPECT_EQ(modeOf(data), 0700U) << mask;
        EXPECT_EQ(modeOf(folder), 0700U) << mask;
        EXPECT_EQ(modeOf(file), 0600U) << mask;
        std::filesystem::remove_all(data);
    }
}

TEST_F(FileStore, RestrictsAFolderThatOthersMayList) {
    makeFolder();
    chmod(folder.c_str(), 0755);
    ASSERT_TRUE(store.add(service, account, "value"));
    EXPECT_EQ(modeOf(folder), 0700U);
}

TEST_F(FileStore, CreatesAllMissingFolders) {
    for (const char* const way : {"a/b/c", "d/e/", "f//"}) {
        FileCredentialStore deep((data / way).string());
        EXPECT_TRUE(deep.add(service, account, "value")) << way;
        EXPECT_EQ(deep.read(service, account), "value") << way;
    }
}

TEST_F(FileStore, FollowsALinkInPlaceOfTheDataFolder) {
    const std::filesystem::path elsewhere = root_ / "elsewhere";
    std::filesystem::create_directory(elsewhere);
    std::filesystem::create_directory_symlink(elsewhere, data);
    ASSERT_TRUE(store.add(service, account, "value"));
    EXPECT_EQ(FileCredentialStore(elsewhere.string()).read(service, account), "value");
}

TEST_F(FileStore, IsNotAvailableWithoutADataFolder) {
    FileCredentialStore homeless("");
    EXPECT_EQ(homeless.read(service, account), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(homeless.add(service, account, "value"), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(homeless.remove(service, account), Unexpected(CredentialStatus::notAvailable));

    std::filesystem::create_symlink("/nonexistent/x", data);
    FileCredentialStore unmounted((data / "app").string());
    EXPECT_EQ(unmounted.add(service, account, "value"), Unexpected(CredentialStatus::notAvailable));
    EXPECT_EQ(unmounted.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(store.add(service, account, "value"), Unexpected(CredentialStatus::notAvailable));
}

TEST_F(FileStore, DistinguishesEveryPairOfNames) {
    using namespace std::string_literals;
    const std::vector<std::pair<std::string, std::string>> names = {
        {"a", "b"},    {"b", "a"},     {"ab", ""},  {"", "ab"},     {"", ""},       {"a@b", "c"},
        {"a", "b@c"},  {"a/b", "c"},   {"..", "x"}, {"../..", "/"}, {"/etc/", "x"}, {"%40", "x"},
        {"@", "x"},    {"a%2Fb", "c"}, {"~", "x"},  {"a\0b"s, "c"}, {"a", "b\0"s},  {"\xFF\xFE", ""},
        {"Grüße", ""}, {".", "."},     {" ", "\n"},
    };
    const auto valueOf = [](std::string first, const std::string& second) {
        return first.append("|").append(second);
    };
    for (const auto& [first, second] : names) {
        ASSERT_TRUE(store.add(first, second, valueOf(first, second))) << first;
    }
    EXPECT_THAT(namesIn(folder), SizeIs(names.size()));
    for (const auto& [first, second] : names) {
        EXPECT_EQ(store.read(first, second), valueOf(first, second));
    }
}

TEST_F(FileStore, RejectsANameTooLongForAFile) {
    const std::string name(300, 'x');
    EXPECT_EQ(store.add(name, account, "value"), Unexpected(CredentialStatus::notPermitted));
    EXPECT_EQ(store.read(name, account), Unexpected(CredentialStatus::notPermitted));
    EXPECT_THAT(namesIn(folder), IsEmpty());
}

TEST_F(FileStore, RemovesOnlyTheItemOfThatName) {
    ASSERT_TRUE(store.add(service, account, "one"));
    ASSERT_TRUE(store.add(service, "another", "two"));
    EXPECT_TRUE(store.remove(service, account));
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(store.read(service, "another"), "two");
}

struct Intrusion {
    const char* name;
    /// Puts something in place of the item's file.
    std::function<void(const std::filesystem::path& file)> put;
};

std::ostream& operator<<(std::ostream& stream, const Intrusion& intrusion) {
    return stream << intrusion.name;
}

std::function<void(const std::filesystem::path&)> fileOfMode(mode_t mode) {
    return [mode](const std::filesystem::path& file) {
        writeFile(file, "planted");
        chmod(file.c_str(), mode);
    };
}

class UntrustedFile : public FileStore, public ::testing::WithParamInterface<Intrusion> {};

TEST_P(UntrustedFile, IsNotReadAndMakesWayForANewItemWithoutBeingLost) {
    makeFolder();
    GetParam().put(file);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.add(service, account, "new"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_EQ(contentsOf(file), "planted");
    EXPECT_TRUE(store.remove(service, account));
    EXPECT_EQ(contentsOf(file.string() + "~untrusted1"), "planted");
    EXPECT_TRUE(store.add(service, account, "new"));
    EXPECT_EQ(store.read(service, account), "new");
}

TEST_F(FileStore, KeepsNineUntrustedFiles) {
    makeFolder();
    for (int count = 1; count <= 10; ++count) {
        writeFile(file, std::to_string(count));
        chmod(file.c_str(), 0644);
        EXPECT_EQ(store.remove(service, account).has_value(), count < 10) << count;
    }
    EXPECT_EQ(contentsOf(file.string() + "~untrusted1"), "1");
    EXPECT_EQ(contentsOf(file.string() + "~untrusted9"), "9");
    EXPECT_EQ(contentsOf(file), "10");
    EXPECT_TRUE(store.add(service, std::string(account) + "~untrusted1", "another item"));
    EXPECT_EQ(contentsOf(file.string() + "~untrusted1"), "1");
}

INSTANTIATE_TEST_SUITE_P(FileStore, UntrustedFile,
                         ::testing::Values(Intrusion{"ReadableByTheGroup", fileOfMode(0640)},
                                           Intrusion{"ReadableByOthers", fileOfMode(0604)},
                                           Intrusion{"WritableByTheGroup", fileOfMode(0620)},
                                           Intrusion{"WritableByOthers", fileOfMode(0602)},
                                           Intrusion{"ExecutableByOthers", fileOfMode(0601)}),
                         [](const auto& row) { return row.param.name; });

class NoFile : public FileStore, public ::testing::WithParamInterface<Intrusion> {};

TEST_P(NoFile, IsNeitherReadNorRemovedNorReplaced) {
    makeFolder();
    GetParam().put(file);

    struct stat before {};

    if (lstat(file.c_str(), &before) != 0) {
        GTEST_SKIP() << "only root can make one";
    }
    const std::vector<std::string> names = namesIn(folder);
    const auto began = steady_clock::now();
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.add(service, account, "new"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_LT(steady_clock::now() - began, std::chrono::seconds(5)) << "it waited";

    struct stat after {};

    ASSERT_EQ(lstat(file.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_THAT(namesIn(folder), ::testing::UnorderedElementsAreArray(names));
}

INSTANTIATE_TEST_SUITE_P(
    FileStore, NoFile,
    ::testing::Values(
        Intrusion{"Link",
                  [](const std::filesystem::path& file) {
                      const std::filesystem::path target = file.parent_path() / "target";
                      writeFile(target, "planted");
                      chmod(target.c_str(), 0600);
                      std::filesystem::create_symlink(target, file);
                  }},
        Intrusion{"LinkToNowhere",
                  [](const std::filesystem::path& file) {
                      std::filesystem::create_symlink("/nonexistent/x", file);
                  }},
        Intrusion{
            "LinkToADevice",
            [](const std::filesystem::path& file) { std::filesystem::create_symlink("/dev/null", file); }},
        Intrusion{"Pipe", [](const std::filesystem::path& file) { mkfifo(file.c_str(), 0600); }},
        Intrusion{"Socket", support::makeSocket},
        Intrusion{
            "Device",
            [](const std::filesystem::path& file) { mknod(file.c_str(), S_IFCHR | 0600, makedev(1, 3)); }},
        Intrusion{"Folder",
                  [](const std::filesystem::path& file) { std::filesystem::create_directory(file); }}),
    [](const auto& row) { return row.param.name; });

/// The store while the process may open no further file.
class FileStoreWithoutDescriptors : public FileStore {
  protected:
    void SetUp() override { ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former_), 0); }

    void TearDown() override { allowDescriptors(); }

    /// Forbids opening more files than this from now on.
    void allowOnly(rlim_t room) const {
        const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ASSERT_GE(next, 0);
        close(next);
        const rlimit small{static_cast<rlim_t>(next) + room, former_.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &small), 0);
    }

    void allowDescriptors() const { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &former_), 0); }

  private:
    rlimit former_{};
};

TEST_F(FileStoreWithoutDescriptors, NeverRemovesTheItemThatItCouldNotRead) {
    ASSERT_TRUE(store.add(service, account, "value"));
    for (const rlim_t room : {rlim_t{0}, rlim_t{1}}) {
        allowOnly(room);
        const Result<std::string, CredentialStatus> item = store.read(service, account);
        const Result<void, CredentialStatus> withoutDescriptors = store.remove(service, account);
        allowDescriptors();
        EXPECT_EQ(item, Unexpected(CredentialStatus::notAvailable)) << room;
        EXPECT_EQ(withoutDescriptors, Unexpected(CredentialStatus::notAvailable)) << room;
        // The reader has taken another identity by now, for this run.
        EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notAvailable)) << room;
        EXPECT_EQ(store.add(service, account, "new"), Unexpected(CredentialStatus::duplicateItem)) << room;
        EXPECT_EQ(store.read(service, account), "value") << room;
    }
    EXPECT_TRUE(store.remove(service, account)) << "it has been read since";
}

TEST_F(FileStoreWithoutDescriptors, RemovesNothingThatItCannotReadFirst) {
    ASSERT_TRUE(store.add(service, account, "value"));
    for (const rlim_t room : {rlim_t{0}, rlim_t{1}}) {
        allowOnly(room);
        const Result<void, CredentialStatus> removed = store.remove(service, account);
        allowDescriptors();
        EXPECT_EQ(removed, Unexpected(CredentialStatus::notAvailable)) << room;
        EXPECT_EQ(contentsOf(file), "value") << room;
    }
}

TEST_F(FileStore, DoesNotRemoveAnItemThatItMayNotRead) {
    constexpr uid_t nobody = 65534;
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ASSERT_EQ(chmod(root_.c_str(), 0777), 0);
    ASSERT_EQ(seteuid(nobody), 0);
    EXPECT_TRUE(store.add(service, account, "value"));
    EXPECT_EQ(chmod(file.c_str(), 0), 0);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notPermitted));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notPermitted));
    EXPECT_EQ(store.add(service, account, "new"), Unexpected(CredentialStatus::duplicateItem));
    EXPECT_EQ(chmod(file.c_str(), 0600), 0);
    EXPECT_EQ(store.read(service, account), "value");
    ASSERT_EQ(seteuid(0), 0);
}

TEST_F(FileStore, DoesNotWaitForAForeignLock) {
    ASSERT_TRUE(store.add(service, account, "value"));
    std::vector<FileDescriptor> locked;
    for (const std::filesystem::path& path : {root_, data, folder, file}) {
        locked.emplace_back(open(path.c_str(), O_RDONLY | O_CLOEXEC));
        ASSERT_EQ(flock(locked.back().number(), LOCK_EX), 0) << path;
    }
    const auto began = steady_clock::now();
    EXPECT_EQ(store.read(service, account), "value");
    EXPECT_TRUE(store.remove(service, account));
    EXPECT_TRUE(store.add(service, account, "new"));
    EXPECT_LT(steady_clock::now() - began, std::chrono::seconds(5)) << "it waited";
}

TEST_F(FileStore, DoesNotTrustAFileOfAnotherUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    ASSERT_TRUE(store.add(service, account, "value"));
    ASSERT_EQ(chown(file.c_str(), 12345, 12345), 0);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
}

TEST_F(FileStore, TrustsNothingInAFolderOfAnotherUser) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    ASSERT_TRUE(store.add(service, account, "value"));
    ASSERT_EQ(chown(folder.c_str(), 12345, 12345), 0);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.add(service, "another", "value"), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notTrusted));
}

TEST_F(FileStore, TrustsNothingInAFolderThatOthersMayWriteTo) {
    for (const mode_t mode : {mode_t{0770}, mode_t{0702}, mode_t{0777}}) {
        std::filesystem::remove_all(data);
        ASSERT_TRUE(store.add(service, account, "value"));
        chmod(folder.c_str(), mode);
        EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted)) << mode;
        EXPECT_EQ(store.add(service, "another", "value"), Unexpected(CredentialStatus::notTrusted)) << mode;
        EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notTrusted)) << mode;
    }
}

TEST_F(FileStore, TrustsNothingBehindALinkInPlaceOfItsFolder) {
    ASSERT_TRUE(store.add(service, account, "value"));
    const std::filesystem::path moved = root_ / "moved";
    std::filesystem::rename(folder, moved);
    std::filesystem::create_directory_symlink(moved, folder);
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.add(service, "another", "value"), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.remove(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_THAT(namesIn(moved), SizeIs(1));
}

TEST_F(FileStore, TrustsNothingIfAFileIsInPlaceOfTheFolder) {
    writeFile(data, "a file");
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(store.add(service, account, "value"), Unexpected(CredentialStatus::notTrusted));
    EXPECT_EQ(contentsOf(data), "a file");
}

TEST_F(FileStore, RemovesLeftoversOfAKilledProcess) {
    makeFolder();
    writeFile(folder / "~vorna-0123456789abcdef", "half a val");
    ASSERT_TRUE(store.add(service, account, "value"));
    EXPECT_THAT(namesIn(folder), ElementsAre(file.filename().string()));
}

TEST_F(FileStore, LeavesAFileThatAnotherProcessIsStillWriting) {
    makeFolder();
    const std::filesystem::path unfinished = folder / "~vorna-0123456789abcdef";
    writeFile(unfinished, "half a val");
    const int writer = open(unfinished.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    ASSERT_TRUE(store.add(service, account, "value"));
    EXPECT_TRUE(std::filesystem::exists(unfinished));
    close(writer);
}

TEST_F(FileStore, LetsExactlyOneOfTwoProcessesAdd) {
    for (int round = 0; round < 100; ++round) {
        const std::string name = "round " + std::to_string(round);
        const auto adder = [&](const std::string& value) {
            return [this, &name, value](const std::string&) {
                const Result<void, CredentialStatus> result = store.add(service, name, value);
                return result ? 10 : result.error() == CredentialStatus::duplicateItem ? 20 : 30;
            };
        };
        ForkedProcess one(adder("one"));
        ForkedProcess two(adder("two"));
        one.start();
        two.start();
        const int resultOfOne = one.wait();
        const int resultOfTwo = two.wait();
        ASSERT_TRUE((resultOfOne == 10 && resultOfTwo == 20) || (resultOfOne == 20 && resultOfTwo == 10))
            << resultOfOne << " and " << resultOfTwo;
        ASSERT_EQ(store.read(service, name), resultOfOne == 10 ? "one" : "two");
    }
    EXPECT_THAT(namesIn(folder), SizeIs(100)) << "something unfinished was left";
}

TEST_F(FileStore, ShowsOtherProcessesTheCompleteValueOrNone) {
    const std::string value(FileCredentialStore::largestValue, 'x');
    ForkedProcess adder([this, &value](const std::string&) {
        for (int round = 0; round < 20; ++round) {
            if (!store.add(service, account, value) || !store.remove(service, account)) {
                return 1;
            }
        }
        return 0;
    });
    adder.start();
    int whole = 0;
    int absent = 0;
    while (!adder.hasEnded()) {
        const Result<std::string, CredentialStatus> result = store.read(service, account);
        if (result == Unexpected(CredentialStatus::itemNotFound)) {
            ++absent;
            continue;
        }
        ++whole;
        ASSERT_TRUE(result);
        ASSERT_TRUE(result == value) << "only " << result->size() << " bytes";
    }
    EXPECT_EQ(adder.wait(), 0);
    EXPECT_GT(whole, 0);
    EXPECT_GT(absent, 0);
}

TEST_F(FileStore, HasTheCompleteValueOrNoneAfterAKillDuringAdd) {
    const std::string value(FileCredentialStore::largestValue, 'x');
    const auto add = [this, &value](const std::string&) {
        return store.add(service, account, value) ? 0 : 1;
    };
    const auto beganUndisturbed = steady_clock::now();
    ForkedProcess undisturbed(add);
    undisturbed.start();
    ASSERT_EQ(undisturbed.wait(), 0);
    const auto duration = std::chrono::duration_cast<microseconds>(steady_clock::now() - beganUndisturbed);
    ASSERT_TRUE(store.remove(service, account));

    const std::uint64_t seed = std::random_device()();
    std::cout << "seed " << seed << ", moments from 0 to " << duration.count() << " us\n";
    std::mt19937_64 generator(seed);
    std::uniform_int_distribution<microseconds::rep> anyMoment(0, duration.count());
    int unfinished = 0;
    for (int round = 0; round < 100; ++round) {
        ForkedProcess process(add);
        process.start();
        const auto end = steady_clock::now() + microseconds(anyMoment(generator));
        while (steady_clock::now() < end) {
            // A sleep would end only at certain moments.
        }
        process.kill();
        process.wait();
        const Result<std::string, CredentialStatus> result = store.read(service, account);
        if (result) {
            ASSERT_TRUE(result == value) << "only " << result->size() << " bytes";
            ASSERT_TRUE(store.remove(service, account));
        } else {
            ASSERT_EQ(result, Unexpected(CredentialStatus::itemNotFound));
        }
        unfinished += namesIn(folder).empty() ? 0 : 1;
    }
    std::cout << unfinished << " of 100 were killed in the middle\n";
    EXPECT_GT(unfinished, 0) << "no moment was in the middle";
    ASSERT_TRUE(store.add(service, account, "value"));
    EXPECT_THAT(namesIn(folder), SizeIs(1));
}

TEST_F(FileStore, AddsAtomicallyAtTheLimitOnFiles) {
    makeFolder();
    const std::string value(10'000, 'x');
    ASSERT_NE(std::signal(SIGXFSZ, SIG_IGN), SIG_ERR);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    for (const rlim_t limit : {rlim_t{0}, rlim_t{1}, rlim_t{5000}, rlim_t{9999}}) {
        rlimit lowered = before;
        lowered.rlim_cur = limit;
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &lowered), 0);
        const Result<void, CredentialStatus> result = store.add(service, account, value);
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(result, Unexpected(CredentialStatus::notPermitted)) << limit;
        EXPECT_THAT(namesIn(folder), IsEmpty()) << limit;
    }
    EXPECT_TRUE(store.add(service, account, value));
}

class FileStoreOnASmallDisk : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!SmallDisk::whyNot().empty()) {
            GTEST_SKIP() << SmallDisk::whyNot();
        }
    }
};

TEST_F(FileStoreOnASmallDisk, AddsAtomically) {
    const std::string value(std::size_t{3} * 4096, 'x');
    bool hasFailed = false;
    bool hasSucceeded = false;
    for (std::size_t pagesLeft = 0; pagesLeft < 8; ++pagesLeft) {
        const SmallDisk disk;
        FileCredentialStore store(disk.path().string());
        ASSERT_TRUE(store.add(service, "earlier", "kept"));
        disk.fillUpTo(pagesLeft);
        const Result<void, CredentialStatus> result = store.add(service, account, value);
        if (result) {
            hasSucceeded = true;
            EXPECT_EQ(store.read(service, account), value) << pagesLeft;
        } else {
            hasFailed = true;
            EXPECT_EQ(result, Unexpected(CredentialStatus::notPermitted)) << pagesLeft;
            EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound)) << pagesLeft;
            EXPECT_THAT(namesIn(disk.path() / "credentials"), SizeIs(1)) << pagesLeft;
        }
        EXPECT_EQ(store.read(service, "earlier"), "kept") << pagesLeft;
    }
    EXPECT_TRUE(hasFailed);
    EXPECT_TRUE(hasSucceeded);
}

TEST_F(FileStoreOnASmallDisk, ChangesNothingOnAReadOnlyDisk) {
    const SmallDisk disk;
    FileCredentialStore store(disk.path().string());
    FileCredentialStore fresh((disk.path() / "fresh").string());
    ASSERT_TRUE(store.add(service, "earlier", "kept"));
    disk.makeReadOnly();
    EXPECT_EQ(store.add(service, account, "value"), Unexpected(CredentialStatus::notPermitted));
    EXPECT_EQ(store.remove(service, "earlier"), Unexpected(CredentialStatus::notPermitted));
    EXPECT_EQ(store.read(service, "earlier"), "kept");
    EXPECT_EQ(store.read(service, account), Unexpected(CredentialStatus::itemNotFound));
    EXPECT_EQ(fresh.add(service, account, "value"), Unexpected(CredentialStatus::notPermitted));
    disk.makeWritable();
    EXPECT_TRUE(store.add(service, account, "value"));
}

}  // namespace
}  // namespace vorna
