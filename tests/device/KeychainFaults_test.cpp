// SPDX-License-Identifier: Apache-2.0
// The identity in the real file store, under the conditions of a phone: a real clock, real random bits, power
// failures.

#include <vorna/device/KeychainHelper.h>

#include <tests/support/ForkedProcess.h>
#include <tests/support/SettableClock.h>
#include <tests/support/SmallDisk.h>
#include <tests/support/TemporaryFolder.h>

#include <vorna/events/ULID.h>
#include <vorna/platform/file/FileCredentialStore.h>
#include <vorna/platform/linux/GetrandomSource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace vorna {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;
using support::contentsOf;
using support::ForkedProcess;
using support::namesIn;
using support::SettableClock;
using support::SmallDisk;
using support::TemporaryFolder;
using support::writeFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr double now = 1'763'704'800.123;
constexpr const char* fileName = "io.vorna.vornasdk@userDetails";

KeychainHelper helperOver(const std::filesystem::path& data) {
    const auto random = std::make_shared<GetrandomSource>();
    return KeychainHelper(std::make_shared<FileCredentialStore>(data.string()),
                          std::make_shared<SettableClock>(now),
                          [random](Date date) { return ULID(date, *random).ulidString(); });
}

KeyChainData run(const std::filesystem::path& data) {
    return helperOver(data).loadOrCreateIdentity();
}

/// Suppresses the output of first runs, which is not tested here.
class KeychainFaults : public ::testing::Test {
  protected:
    void SetUp() override { ::testing::internal::CaptureStdout(); }

    void TearDown() override {
        if (isCapturing) {
            ::testing::internal::GetCapturedStdout();
        }
    }

    std::string output() {
        isCapturing = false;
        return ::testing::internal::GetCapturedStdout();
    }

    TemporaryFolder temporary;
    bool isCapturing = true;
};

TEST_F(KeychainFaults, TheIdentifierContainsTheTimeOfTheFirstRun) {
    const KeyChainData made = run(temporary.path());
    const std::optional<ULID> ulid = ULID::fromString(made.userId);
    ASSERT_TRUE(ulid);
    EXPECT_EQ(ulid->ulidString(), made.userId);
    EXPECT_EQ(ulid->timestamp(), Date{1'763'704'800.123});
    EXPECT_EQ(made.installTime, 1'763'704'800U);
    EXPECT_EQ(run(temporary.path()), made);
    EXPECT_NE(run(temporary.path() / "another installation").userId, made.userId);
}

TEST_F(KeychainFaults, AProcessKilledDuringItsFirstRunLeavesACompleteRecordOrNone) {
    const auto firstRun = [](const std::filesystem::path& data) {
        return [data](const std::string&) {
            run(data);
            return 0;
        };
    };
    // How long an undisturbed first run takes, including the start of its process.
    std::vector<microseconds> durations;
    for (int sample = 0; sample < 9; ++sample) {
        ForkedProcess process(firstRun(temporary.path() / ("sample" + std::to_string(sample))));
        const auto began = steady_clock::now();
        process.start();
        ASSERT_EQ(process.wait(), 0);
        durations.push_back(std::chrono::duration_cast<microseconds>(steady_clock::now() - began));
    }
    std::sort(durations.begin(), durations.end());
    const auto longest = durations[durations.size() / 2] * 13 / 10;

    const std::uint64_t seed = std::random_device()();
    std::cerr << "seed " << seed << ", moments from 0 to " << longest.count() << " us\n";
    std::mt19937_64 generator(seed);
    std::uniform_int_distribution<microseconds::rep> anyMoment(0, longest.count());
    int whole = 0;
    int absent = 0;
    int unfinished = 0;
    for (int round = 0; round < 200; ++round) {
        const std::filesystem::path data = temporary.path() / std::to_string(round);
        const std::filesystem::path folder = data / "credentials";
        const microseconds moment(anyMoment(generator));
        {
            ForkedProcess process(firstRun(data));
            process.start();
            const auto end = steady_clock::now() + moment;
            while (steady_clock::now() < end) {
                // A sleep would end only at certain moments.
            }
            process.kill();
            process.wait();
        }
        unfinished += static_cast<int>(
            std::ranges::count_if(namesIn(folder), [](const std::string& name) { return name != fileName; }));
        FileCredentialStore store(data.string());
        const Result<std::string, CredentialStatus> found =
            store.read(KeychainHelper::service, KeychainHelper::account);
        std::optional<KeyChainData> before;
        if (found) {
            ++whole;
            before = KeychainHelper::decode(*found);
            ASSERT_TRUE(before) << "torn after " << moment.count() << " us: " << *found;
            EXPECT_TRUE(ULID::fromString(before->userId)) << *found;
        } else {
            ++absent;
            ASSERT_EQ(found, Unexpected(CredentialStatus::itemNotFound)) << moment.count() << " us";
        }
        // The next run continues from there, and cleans up if it has to create an identity.
        const KeyChainData next = run(data);
        if (before) {
            EXPECT_EQ(next, *before);
        } else {
            EXPECT_THAT(namesIn(folder), ElementsAre(fileName));
        }
    }
    std::cerr << whole << " whole, " << absent << " absent, " << unfinished
              << " unfinished files on the way\n";
    EXPECT_GT(whole, 0) << "no moment was late enough";
    EXPECT_GT(absent, 0) << "no moment was early enough";
}

TEST_F(KeychainFaults, TwoProcessesThatCreateTheFirstIdentityConcurrentlyLeaveOneRecord) {
    for (int round = 0; round < 100; ++round) {
        const std::filesystem::path data = temporary.path() / std::to_string(round);
        const std::filesystem::path reports = temporary.path() / ("reports" + std::to_string(round));
        std::filesystem::create_directory(reports);
        const auto firstRun = [&](const char* name) {
            return [path = reports / name, &data](const std::string&) {
                writeFile(path, run(data).userId);
                return 0;
            };
        };
        ForkedProcess one(firstRun("one"));
        ForkedProcess two(firstRun("two"));
        one.start();
        two.start();
        ASSERT_EQ(one.wait(), 0);
        ASSERT_EQ(two.wait(), 0);
        EXPECT_THAT(namesIn(data / "credentials"), ElementsAre(fileName));
        const KeyChainData later = run(data);
        EXPECT_EQ(run(data), later);
        const std::string ofOne = contentsOf(reports / "one");
        const std::string ofTwo = contentsOf(reports / "two");
        EXPECT_THAT(ofOne, SizeIs(26));
        EXPECT_THAT(ofTwo, SizeIs(26));
        EXPECT_TRUE(later.userId == ofOne || later.userId == ofTwo);
    }
}

TEST_F(KeychainFaults, OnAFullDiskTheIdentityIsUsedForThisRun) {
    if (!SmallDisk::whyNot().empty()) {
        GTEST_SKIP() << SmallDisk::whyNot();
    }
    const SmallDisk disk;
    disk.fillUpTo(0);
    const KeyChainData first = run(disk.path());
    const KeyChainData second = run(disk.path());
    EXPECT_TRUE(ULID::fromString(first.userId));
    EXPECT_NE(first.userId, second.userId);
    EXPECT_THAT(namesIn(disk.path() / "credentials"), IsEmpty());
    const std::string lines = "Error reading from Keychain: -25300\nError saving to Keychain: -34018\n";
    EXPECT_EQ(output(), lines + lines);
    std::filesystem::remove(disk.path() / "filler");
    const KeyChainData kept = run(disk.path());
    EXPECT_EQ(run(disk.path()), kept);
}

TEST_F(KeychainFaults, InAReadOnlyFolderTheIdentityIsUsedForThisRun) {
    if (!SmallDisk::whyNot().empty()) {
        GTEST_SKIP() << SmallDisk::whyNot();
    }
    const SmallDisk disk;
    disk.makeReadOnly();
    EXPECT_TRUE(ULID::fromString(run(disk.path()).userId));
    EXPECT_EQ(output(), "Error reading from Keychain: -25300\nError saving to Keychain: -34018\n");
    EXPECT_THAT(namesIn(disk.path()), IsEmpty());
}

TEST_F(KeychainFaults, AnIdentityInAReadOnlyFolderIsRead) {
    if (!SmallDisk::whyNot().empty()) {
        GTEST_SKIP() << SmallDisk::whyNot();
    }
    const SmallDisk disk;
    const KeyChainData made = run(disk.path());
    disk.makeReadOnly();
    EXPECT_EQ(run(disk.path()), made);
}

TEST_F(KeychainFaults, ATextThatIsNotUTF8IsReplaced) {
    const KeyChainData made = run(temporary.path());
    writeFile(temporary.path() / "credentials" / fileName, "\xFF\xFE");
    const KeyChainData next = run(temporary.path());
    EXPECT_NE(next, made);
    EXPECT_EQ(run(temporary.path()), next);
    EXPECT_EQ(output(), "Error reading from Keychain: -25300\nError reading from Keychain: 0\n");
}

TEST_F(KeychainFaults, AFileThatOthersMayReadIsReplaced) {
    const KeyChainData made = run(temporary.path());
    chmod((temporary.path() / "credentials" / fileName).c_str(), 0644);
    const KeyChainData next = run(temporary.path());
    EXPECT_NE(next, made);
    EXPECT_EQ(run(temporary.path()), next);
    EXPECT_EQ(output(), "Error reading from Keychain: -25300\nError reading from Keychain: -67054\n");
}

TEST_F(KeychainFaults, ARunThatFindsNoFreeDescriptorLeavesTheIdentityForTheNext) {
    const KeyChainData made = run(temporary.path());
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    const rlimit none{0, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const KeyChainData next = run(temporary.path());
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);
    EXPECT_TRUE(ULID::fromString(next.userId));
    EXPECT_NE(next, made);
    EXPECT_EQ(run(temporary.path()), made);
    EXPECT_EQ(output(), "Error reading from Keychain: -25300\nError reading from Keychain: -25291\n"
                        "Error saving to Keychain: -25291\n");
}

TEST_F(KeychainFaults, ARunDuringWhichADescriptorBecomesFreeLeavesTheIdentityForTheNext) {
    const KeyChainData made = run(temporary.path());
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    const KeychainHelper helper(std::make_shared<FileCredentialStore>(temporary.path().string()),
                                std::make_shared<SettableClock>(now), [&former](Date /*date*/) {
                                    // Between the reading and the saving.
                                    setrlimit(RLIMIT_NOFILE, &former);
                                    return std::string("another");
                                });
    const rlimit none{0, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(helper.loadOrCreateIdentity().userId, "another");
    EXPECT_EQ(run(temporary.path()), made);
    EXPECT_EQ(output(), "Error reading from Keychain: -25300\nError reading from Keychain: -25291\n"
                        "Error saving to Keychain: -25299\n");
}

TEST_F(KeychainFaults, AbortsIfTheStoredTextIsNotARecord) {
    run(temporary.path());
    const std::filesystem::path file = temporary.path() / "credentials" / fileName;
    for (const std::string& text :
         {std::string("{}"), std::string(), std::string(std::size_t{1024} * 1024, 'x'),
          std::string(std::size_t{1024} * 1024, '[')}) {
        writeFile(file, text);
        ForkedProcess process([this](const std::string&) {
            run(temporary.path());
            return 0;
        });
        process.start();
        EXPECT_EQ(process.wait(), -1) << text.substr(0, 10);
        EXPECT_TRUE(contentsOf(file) == text) << text.substr(0, 10);
    }
}

}  // namespace
}  // namespace vorna
