// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/LinuxSystem.h>

#include <vorna/platform/Log.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/glib/Fingerprints.h>
#include <vorna/platform/linux/SystemFile.h>

#include <tests/platform/glib/FakeSystemBus.h>
#include <tests/platform/linux/SystemTree.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <limits>
#include <system_error>
#include <thread>

namespace vorna {
namespace {

using support::TemporaryFolder;
using tests::copySystemTree;
using tests::environmentOf;
using tests::eventually;
using tests::FakeFingerprintService;
using tests::FakeSystemBus;
using tests::Fingers;
using tests::MuteSystemBus;
using tests::systemTree;
using namespace std::chrono_literals;

/// A system under this root folder, reread at short intervals.
LinuxSystemOptions optionsFor(const std::string& root) {
    LinuxSystemOptions options;
    options.bundle.identifier = "com.example.app";
    options.root = root;
    options.environment = environmentOf({{"HOME", root}, {"LANG", "tr_TR.UTF-8"}});
    options.isFingerEnrolled = isFingerEnrolled;
    options.pollInterval = 5ms;
    return options;
}

const ScreenFacts noScreen{.width = 0, .height = 0, .scale = 1};
const ScreenFacts windowScreen{.width = 375, .height = 667, .scale = 2};

TEST(LinuxSystemFacts, MatchAPhone) {
    LinuxSystemOptions options = optionsFor(systemTree("pinephone-postmarketos"));
    options.bundle.shortVersion = "1.2";
    const LinuxSystem system(options);
    const auto facts = system.facts();
    EXPECT_EQ(facts->deviceModel, "Pine64 PinePhone (1.2)");
    EXPECT_EQ(facts->deviceName, "Ayşe'nin \"küçük\" telefonu");
    EXPECT_EQ(facts->osVersion, "edge");
    EXPECT_EQ(facts->locale, "tr_TR");
    EXPECT_EQ(facts->identifierForVendor, "F67BFABE-847C-8FBD-8742-DCF2493F68C3");
    EXPECT_EQ(facts->advertisingIdentifier, "00000000-0000-0000-0000-000000000000");
    EXPECT_FALSE(facts->isBoldTextEnabled);
    EXPECT_EQ(facts->bundle, options.bundle);
}

TEST(LinuxSystemFacts, MatchABareContainer) {
    const TemporaryFolder home;
    LinuxSystemOptions options = optionsFor(systemTree("alpine-container"));
    options.bundle = {};
    options.environment = environmentOf({{"HOME", home.path()}});
    utsname kernel = {};
    ASSERT_EQ(uname(&kernel), 0);

    LinuxSystem system(options);
    system.enableBatteryMonitoring();
    const auto facts = system.facts();
    EXPECT_EQ(facts->deviceModel, kernel.machine);
    EXPECT_EQ(facts->deviceName, kernel.nodename);
    EXPECT_EQ(facts->osVersion, "3.20.7");
    EXPECT_EQ(facts->locale, "en_US_POSIX");
    EXPECT_EQ(facts->screen, noScreen);
    EXPECT_EQ(facts->battery,
              (BatteryFacts{.level = -1, .state = BatteryState::unknown, .isMonitoringEnabled = true}));
    EXPECT_FALSE(facts->isBiometricSupported);
    EXPECT_EQ(facts->identifierForVendor, std::nullopt);
    EXPECT_EQ(facts->bundle, BundleFacts{});
}

TEST(LinuxSystemFacts, ExistOnThisMachine) {
    const LinuxSystem system;
    const auto facts = system.facts();
    EXPECT_FALSE(facts->deviceModel.empty());
    EXPECT_FALSE(facts->deviceName.empty());
    EXPECT_FALSE(facts->osVersion.empty());
    EXPECT_FALSE(facts->locale.empty());
}

TEST(LinuxSystemFacts, TextThatIsNotUtf8IsRepaired) {
    const TemporaryFolder root;
    root.write("sys/class/dmi/id/product_name", "Caf\xE9 9000\n");
    root.write("etc/machine-info", "PRETTY_HOSTNAME=\"\xFF\"\n");
    root.write("etc/os-release", "VERSION_ID=\xC3\n");
    LinuxSystemOptions options = optionsFor(root.path());
    const LinuxSystem system(options);
    const auto facts = system.facts();
    EXPECT_EQ(facts->deviceModel, "Caf\uFFFD 9000");
    EXPECT_EQ(facts->deviceName, "\uFFFD");
    EXPECT_EQ(facts->osVersion, "\uFFFD");
}

TEST(LinuxSystemFacts, TextOfTheHostThatIsNotUtf8IsRepairedAndLogged) {
    const TemporaryFolder root;
    LinuxSystemOptions options = optionsFor(root.path());
    options.bundle = {"com.example.caf\xE9", "1.2 \xFE", std::nullopt};
    log::enabled = true;
    testing::internal::CaptureStdout();
    LinuxSystem system(options);
    system.supplyBundle({std::nullopt, std::nullopt, "\xFF"});
    log::enabled = false;
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] Repaired text of the bundle that is not UTF-8: \"com.example.caf\uFFFD\"\n"
              "[VornaSDK] Repaired text of the bundle that is not UTF-8: \"1.2 \uFFFD\"\n"
              "[VornaSDK] Repaired text of the bundle that is not UTF-8: \"\uFFFD\"\n");
    EXPECT_EQ(system.facts()->bundle, (BundleFacts{"com.example.caf\uFFFD", "1.2 \uFFFD", "\uFFFD"}));
}

TEST(LinuxSystemFacts, ApplicationsOfOneVendorShareTheVendorsIdentifier) {
    const auto identifier = [](const std::string& bundleIdentifier) {
        LinuxSystemOptions options = optionsFor(systemTree("desktop-debian"));
        options.bundle.identifier = bundleIdentifier;
        return LinuxSystem(options).facts()->identifierForVendor;
    };
    EXPECT_EQ(identifier("com.example.app"), identifier("com.example.game"));
    EXPECT_NE(identifier("com.example.app"), identifier("com.other.app"));
    EXPECT_TRUE(identifier(""));
    EXPECT_NE(identifier(""), identifier("com.example.app"));
}

TEST(LinuxSystemFacts, AreTheSameObjectAsLongAsNothingChanges) {
    const TemporaryFolder root;
    LinuxSystem system(optionsFor(root.path()));
    system.enableBatteryMonitoring();
    const auto before = system.facts();
    system.enableBatteryMonitoring();
    system.setScreen(noScreen);
    EXPECT_EQ(system.facts(), before);
}

TEST(LinuxSystemFacts, OnceReturnedNeverChange) {
    LinuxSystem system(optionsFor(systemTree("alpine-container")));
    const auto before = system.facts();
    system.setScreen(windowScreen);
    EXPECT_EQ(before->screen, noScreen);
    EXPECT_EQ(system.facts()->screen, windowScreen);
    EXPECT_NE(system.facts(), before);
}

TEST(LinuxSystemFacts, FollowANewNameOfTheDevice) {
    const TemporaryFolder root;
    copySystemTree("pinephone-postmarketos", root.path());
    const LinuxSystem system(optionsFor(root.path()));
    const std::string before = system.facts()->deviceName;
    root.replace("etc/machine-info", "PRETTY_HOSTNAME=\"Ayşe'nin telefonu\"\n");
    EXPECT_TRUE(eventually([&] { return system.facts()->deviceName == "Ayşe'nin telefonu"; }));
    EXPECT_NE(system.facts()->deviceName, before);
    root.replace("etc/machine-info", "PRETTY_HOSTNAME=\"\xFF\"\n");
    EXPECT_TRUE(eventually([&] { return system.facts()->deviceName == "\uFFFD"; }));
}

TEST(LinuxSystemFacts, FollowAnUpgradeOfTheSystem) {
    const TemporaryFolder root;
    copySystemTree("desktop-debian", root.path());
    root.replace("etc/os-release", "VERSION_ID=\"12\"\n");
    const LinuxSystem system(optionsFor(root.path()));
    EXPECT_EQ(system.facts()->osVersion, "12");
    root.replace("etc/os-release", "VERSION_ID=\"13\"\n");
    EXPECT_TRUE(eventually([&] { return system.facts()->osVersion == "13"; }));
}

TEST(LinuxSystemBundle, IsSuppliedOnlyIfTheOptionsDoNotGiveIt) {
    LinuxSystemOptions options = optionsFor(systemTree("alpine-container"));
    options.bundle = {std::nullopt, "2.0", std::nullopt};
    LinuxSystem system(options);
    system.supplyBundle({"com.example.app", "1.0", std::nullopt});
    EXPECT_EQ(system.facts()->bundle, (BundleFacts{"com.example.app", "2.0", std::nullopt}));
}

TEST(LinuxSystemScreen, IsFoundInTheBackground) {
    const LinuxSystem system(optionsFor(systemTree("librem5-pureos")));
    EXPECT_TRUE(eventually([&] { return system.facts()->screen == ScreenFacts{720, 1440, 1}; }));
}

TEST(LinuxSystemScreen, AReportedScreenIsNotReplacedByTheKernels) {
    const TemporaryFolder root;
    copySystemTree("pinephone-postmarketos", root.path());
    LinuxSystem system(optionsFor(root.path()));
    system.setScreen(windowScreen);
    system.enableBatteryMonitoring();
    // The battery is read after the screen, so once its change has arrived the screen has been read too.
    root.replace("sys/class/power_supply/axp20x-battery/capacity", "42\n");
    EXPECT_TRUE(eventually([&] { return system.facts()->battery.level == 0.42F; }));
    EXPECT_EQ(system.facts()->screen, windowScreen);
}

TEST(LinuxSystemBattery, IsUnknownUntilItIsMonitored) {
    const LinuxSystem system(optionsFor(systemTree("pinephone-postmarketos")));
    ASSERT_TRUE(eventually([&] { return system.facts()->screen.width == 720; }));
    EXPECT_EQ(system.facts()->battery, BatteryFacts{});
}

TEST(LinuxSystemBattery, IsMonitoredFromThenOn) {
    LinuxSystem system(optionsFor(systemTree("pinephone-postmarketos")));
    EXPECT_FALSE(system.facts()->battery.isMonitoringEnabled);
    system.enableBatteryMonitoring();
    EXPECT_TRUE(system.facts()->battery.isMonitoringEnabled);
    EXPECT_TRUE(eventually([&] {
        return system.facts()->battery ==
               BatteryFacts{.level = 0.43F, .state = BatteryState::unplugged, .isMonitoringEnabled = true};
    }));
}

TEST(LinuxSystemBattery, AChangeIsNoticed) {
    const TemporaryFolder root;
    copySystemTree("pinephone-postmarketos", root.path());
    LinuxSystem system(optionsFor(root.path()));
    system.enableBatteryMonitoring();
    ASSERT_TRUE(eventually([&] { return system.facts()->battery.level == 0.43F; }));

    root.replace("sys/class/power_supply/axp20x-battery/capacity", "44\n");
    root.replace("sys/class/power_supply/axp20x-battery/status", "Charging\n");
    EXPECT_TRUE(eventually([&] {
        return system.facts()->battery ==
               BatteryFacts{.level = 0.44F, .state = BatteryState::charging, .isMonitoringEnabled = true};
    }));

    std::filesystem::remove_all(root.path() / "sys/class/power_supply");
    EXPECT_TRUE(eventually([&] {
        return system.facts()->battery ==
               BatteryFacts{.level = -1, .state = BatteryState::unknown, .isMonitoringEnabled = true};
    }));
}

TEST(LinuxSystemBiometrics, AreSupportedWhenAFingerIsEnrolled) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::enrolled);
    const LinuxSystem system(optionsFor(bus.root()));
    EXPECT_TRUE(eventually([&] { return system.facts()->isBiometricSupported; }));
    EXPECT_EQ(service.calls().size(), 2U);
}

TEST(LinuxSystemBiometrics, TheBusIsFoundByItsVariable) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::enrolled);
    LinuxSystemOptions options = optionsFor(systemTree("alpine-container"));
    options.environment = environmentOf({{"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}});
    const LinuxSystem system(options);
    EXPECT_TRUE(eventually([&] { return system.facts()->isBiometricSupported; }));
}

TEST(LinuxSystemBiometrics, AreNotSupportedWhenNoFingerIsEnrolled) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::none);
    const LinuxSystem system(optionsFor(bus.root()));
    EXPECT_TRUE(eventually([&] { return service.calls().size() == 3; }));
    EXPECT_FALSE(system.facts()->isBiometricSupported);
}

TEST(LinuxSystemBiometrics, ASilentServiceDelaysNothing) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::hanging);
    const auto begin = std::chrono::steady_clock::now();
    {
        LinuxSystem system(optionsFor(bus.root()));
        system.enableBatteryMonitoring();
        EXPECT_TRUE(system.facts()->battery.isMonitoringEnabled);
        ASSERT_TRUE(service.waitForCall());
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 1500ms);
}

TEST(LinuxSystemDisks, DescribeTheFileSystemOfTheHomeFolder) {
    const TemporaryFolder home;
    const LinuxSystem system(optionsFor(home.path()));
    const std::optional<FileSystemSize> size = system.homeFileSystem();
    ASSERT_TRUE(size);
    const std::filesystem::space_info expected = std::filesystem::space(home.path());
    EXPECT_EQ(size->total, expected.capacity);
    EXPECT_LE(size->free, size->total);
    // Other processes write to this file system too.
    EXPECT_NEAR(static_cast<double>(size->free), static_cast<double>(expected.available), 5e9);
}

TEST(LinuxSystemDisks, AreUnknownIfTheHomeFolderDoesNotExist) {
    LinuxSystemOptions options = optionsFor(systemTree("alpine-container"));
    options.environment = environmentOf({{"HOME", "/none/such/home"}});
    EXPECT_EQ(LinuxSystem(options).homeFileSystem(), std::nullopt);
}

TEST(LinuxSystemWithoutAHome, HasNoDisksAndADocumentsFolderThatDoesNotExist) {
    LinuxSystemOptions options = optionsFor(systemTree("alpine-container"));
    options.environment = environmentOf({});
    const LinuxSystem system(options);
    EXPECT_EQ(system.homeFileSystem(), std::nullopt);
    ASSERT_EQ(system.documentsDirectory(), "/nonexistent");
    EXPECT_EQ(system.creation("/nonexistent").error(), "No such file or directory: /nonexistent");
}

TEST(LinuxSystemDocuments, AreInTheUsersDataAndCreatedOnFirstUse) {
    const TemporaryFolder home;
    const LinuxSystem system(optionsFor(home.path()));
    const std::string expected = home.path() / ".local/share/com.example.app";
    EXPECT_FALSE(std::filesystem::exists(expected));
    EXPECT_EQ(system.documentsDirectory(), expected);
    EXPECT_TRUE(std::filesystem::is_directory(expected));
    EXPECT_EQ(system.documentsDirectory(), expected);
}

TEST(LinuxSystemDocuments, AreInTheFolderGivenByTheHost) {
    const TemporaryFolder folder;
    LinuxSystemOptions options = optionsFor(systemTree("alpine-container"));
    options.dataDirectory = folder.path() / "data/app";
    const LinuxSystem system(options);
    EXPECT_EQ(system.documentsDirectory(), folder.path() / "data/app");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "data/app"));
}

TEST(LinuxSystemDocuments, AreCreatedOnceByManyThreads) {
    const TemporaryFolder home;
    const LinuxSystem system(optionsFor(home.path()));
    std::vector<std::thread> threads;
    std::atomic<int> found = 0;
    threads.reserve(8);
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&] {
            found += std::filesystem::is_directory(system.documentsDirectory().value_or("")) ? 1 : 0;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(found.load(), 8);
}

TEST(LinuxSystemDocuments, AFolderThatCannotBeCreatedIsReturnedAndItsCreationReportsWhy) {
    const TemporaryFolder home;
    home.write(".local", "a file where a folder should be");
    const LinuxSystem system(optionsFor(home.path()));
    const std::string expected = home.path() / ".local/share/com.example.app";
    EXPECT_EQ(system.documentsDirectory(), expected);
    const ItemCreation creation = system.creation(expected);
    ASSERT_FALSE(creation);
    EXPECT_EQ(creation.error(), "Not a directory: " + expected);
}

TEST(LinuxSystemCreation, OfAMissingItemIsAnError) {
    const LinuxSystem system(optionsFor(systemTree("alpine-container")));
    const ItemCreation creation = system.creation("/none/such");
    ASSERT_FALSE(creation);
    EXPECT_EQ(creation.error(), "No such file or directory: /none/such");
    EXPECT_EQ(system.creation("").error(), "No such file or directory: ");
}

TEST(LinuxSystemCreation, OfANewFolderIsNowIfTheFileSystemRecordsIt) {
    const auto now = [] { return static_cast<double>(std::time(nullptr)); };
    const double before = now();
    const TemporaryFolder folder;
    const double after = now() + 1;
    const LinuxSystem system(optionsFor(folder.path()));
    const ItemCreation creation = system.creation(folder.path());
    ASSERT_TRUE(creation);
    if (!*creation) {
        GTEST_SKIP() << "the file system of " << folder.path() << " records no birth times";
    }
    EXPECT_GE((*creation)->secondsSince1970, before - 1);
    EXPECT_LE((*creation)->secondsSince1970, after);
}

TEST(LinuxSystemCreation, DoesNotChangeWithTheItem) {
    const TemporaryFolder folder;
    const LinuxSystem system(optionsFor(folder.path()));
    const ItemCreation before = system.creation(folder.path());
    std::filesystem::last_write_time(folder.path(), std::filesystem::file_time_type::clock::now() - 1000h);
    folder.write("another", "");
    const ItemCreation after = system.creation(folder.path());
    ASSERT_TRUE(before);
    EXPECT_EQ(before, after);
}

TEST(LinuxSystemCreation, IsNeitherADateNorAnErrorIfTheFileSystemRecordsNone) {
    struct statx item = {};
    ASSERT_EQ(statx(AT_FDCWD, "/proc/self", 0, STATX_BTIME, &item), 0);
    if ((item.stx_mask & STATX_BTIME) != 0) {
        GTEST_SKIP() << "/proc records birth times here";
    }
    const ItemCreation creation = LinuxSystem(optionsFor("/none")).creation("/proc/self");
    EXPECT_EQ(creation, ItemCreation(std::nullopt));
}

class LinuxSystemTimeZone : public testing::Test {
  protected:
    /// The test has its own process, whose environment it may change.
    static std::int32_t secondsIn(const char* zone, double moment) {
        setenv("TZ", zone, 1);  // NOLINT(concurrency-mt-unsafe)
        return LinuxSystem(optionsFor("/none")).secondsFromGMT(Date{moment});
    }
};

constexpr double winterOf2024 = 1'705'320'000;
constexpr double summerOf2024 = 1'721'044'800;

TEST_F(LinuxSystemTimeZone, EastOfGreenwichIsAheadAndWestIsBehind) {
    EXPECT_EQ(secondsIn("UTC0", winterOf2024), 0);
    EXPECT_EQ(secondsIn("<+03>-3", winterOf2024), 10800);
    EXPECT_EQ(secondsIn("<+0545>-5:45", winterOf2024), 20700);
    EXPECT_EQ(secondsIn("<-0930>9:30", winterOf2024), -34200);
}

TEST_F(LinuxSystemTimeZone, SummerTimeAppliesToTheGivenDate) {
    constexpr const char* berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
    EXPECT_EQ(secondsIn(berlin, winterOf2024), 3600);
    EXPECT_EQ(secondsIn(berlin, summerOf2024), 7200);
}

TEST_F(LinuxSystemTimeZone, IsZeroForADateOutsideAnyCalendar) {
    for (const double moment : {std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(), -1e300, 1e300, 1e17}) {
        EXPECT_EQ(secondsIn("<+03>-3", moment), 0) << moment;
    }
}

TEST(LinuxSystemTimeZoneOfTheSystem, MayChange) {
    // In a private mount namespace, so that the time zone changes only for this thread and its children.
    const std::string zones = "/usr/share/zoneinfo/";
    if (!std::filesystem::exists(zones + "Asia/Kathmandu") || !std::filesystem::exists("/etc/localtime")) {
        GTEST_SKIP() << "needs the time zone database and /etc/localtime";
    }
    if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        GTEST_SKIP() << "needs permission for a mount namespace: " << std::generic_category().message(errno);
    }
    unsetenv("TZ");  // NOLINT(concurrency-mt-unsafe)
    const LinuxSystem system(optionsFor("/none"));
    ASSERT_NE(system.secondsFromGMT(Date{winterOf2024}), 20700);
    ASSERT_EQ(mount((zones + "Asia/Kathmandu").c_str(), "/etc/localtime", nullptr, MS_BIND, nullptr), 0);
    EXPECT_TRUE(eventually([&] { return system.secondsFromGMT(Date{winterOf2024}) == 20700; }));
}

std::size_t countOf(const char* folder) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& item : std::filesystem::directory_iterator(folder)) {
        ++count;
    }
    return count;
}

TEST(LinuxSystemLife, MayEndAtAnyTimeWithoutLeaks) {
    { const LinuxSystem first(optionsFor(systemTree("thinkpad-fedora"))); }
    const std::size_t threads = countOf("/proc/self/task");
    const std::size_t files = countOf("/proc/self/fd");
    for (int number = 0; number < 200; ++number) {
        LinuxSystem system(optionsFor(systemTree("thinkpad-fedora")));
        if (number % 2 == 0) {
            system.enableBatteryMonitoring();
        }
        if (number % 3 == 0) {
            system.setScreen(windowScreen);
        }
        EXPECT_NE(system.facts(), nullptr);
    }
    // A joined thread may be listed a moment longer.
    EXPECT_TRUE(eventually([&] { return countOf("/proc/self/task") == threads; }));
    EXPECT_EQ(countOf("/proc/self/fd"), files);
}

TEST(LinuxSystemLife, CanBeUsedFromManyThreadsConcurrently) {
    const TemporaryFolder root;
    copySystemTree("pinephone-postmarketos", root.path());
    LinuxSystemOptions options = optionsFor(root.path());
    options.pollInterval = 1ms;
    LinuxSystem system(options);
    std::atomic<bool> isEnough = false;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&, number] {
            for (int turn = 0; !isEnough; ++turn) {
                system.enableBatteryMonitoring();
                if (number == 0) {
                    system.setScreen(
                        ScreenFacts{.width = static_cast<double>(turn % 2), .height = 1, .scale = 1});
                }
                EXPECT_TRUE(system.facts()->battery.isMonitoringEnabled);
                EXPECT_TRUE(system.homeFileSystem());
                EXPECT_TRUE(system.creation(*system.documentsDirectory()));
                system.secondsFromGMT(Date{winterOf2024});
            }
        });
    }
    for (int percent = 1; percent <= 50; ++percent) {
        root.replace("sys/class/power_supply/axp20x-battery/capacity", std::to_string(percent) + "\n");
        EXPECT_TRUE(
            eventually([&] { return system.facts()->battery.level == static_cast<float>(percent / 100.0); }));
    }
    isEnough = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

bool isBackgroundThreadThere() {
    return std::ranges::any_of(std::filesystem::directory_iterator("/proc/self/task"), [](const auto& task) {
        return readSystemValue(task.path().string() + "/comm") == "vorna-system";
    });
}

/// Registered first, so that it runs when all threads should be at rest.
void checkThatTheThreadIsAtRest() {
    // A joined thread may be listed a moment longer.
    if (!eventually([] { return !isBackgroundThreadThere(); }, 1s)) {
        std::cerr << "the background thread is still running\n";
        std::_Exit(3);
    }
}

/// Exits while the background thread waits for a silent bus.
[[noreturn]] void exitWhileTheBusIsSilent(bool isDestroyedAtExit) {
    if (std::atexit(checkThatTheThreadIsAtRest) != 0) {
        std::_Exit(2);
    }
    static const MuteSystemBus bus;
    if (isDestroyedAtExit) {
        static LinuxSystem system(optionsFor(bus.root()));
        system.enableBatteryMonitoring();
    } else {
        static NeverDestroyed<LinuxSystem> system(optionsFor(bus.root()));
        system->enableBatteryMonitoring();
    }
    if (!bus.waitForClient() || !isBackgroundThreadThere()) {
        std::cerr << "the bus was not used\n";
        std::_Exit(1);
    }
    std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
}

TEST(LinuxSystemDeathTest, TheProcessMayExitWhileTheBusIsSilent) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(exitWhileTheBusIsSilent(true), testing::ExitedWithCode(0), "");
}

TEST(LinuxSystemDeathTest, TheProcessMayExitWithASystemThatIsNeverDestroyed) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(exitWhileTheBusIsSilent(false), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vorna
