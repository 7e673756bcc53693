// SPDX-License-Identifier: Apache-2.0
/// `Init` in every place where data cannot be kept: it goes on with what it can have, says what it cannot,
/// and destroys nothing.

#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/ConfigTables.h>
#include <tests/support/ForkedProcess.h>
#include <tests/support/InTemporaryFolder.h>
#include <tests/support/ProcessVariables.h>
#include <tests/support/RecordedEvents.h>
#include <tests/support/SmallDisk.h>

#include <vorna/core/SharedInstance.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace vorna {
namespace {

namespace fs = std::filesystem;

using support::contentsOf;
using support::ForkedProcess;
using support::SmallDisk;
using support::TemporaryFolder;
using support::writeFile;

constexpr const char* itemName = "io.vorna.vornasdk@userDetails";
constexpr const char* record = R"({"userId":"an earlier user","installTime":5})";

constexpr uid_t nobody = 65534;
/// A user without an entry in the account database.
constexpr uid_t stranger = 54321;

/// What a test needs to set up a place; gone at the end of the test.
struct Surroundings {
    TemporaryFolder temporary;
    fs::path root = temporary.path();
    std::optional<SmallDisk> disk;

    SmallDisk& newDisk() { return disk.emplace(); }
};

/// The two lines of the credential store, without what they have in common.
struct Statuses {
    /// std::nullopt: no such line.
    std::optional<int> ofReading;
    std::optional<int> ofSaving;
};

struct Place {
    const char* name;
    /// Makes the place and returns the data directory.
    std::function<std::string(Surroundings&)> make;
    Statuses onFirstRun;
    Statuses onSecondRun;
    /// Whether the configuration can be saved there.
    bool keepsConfigs = false;
    /// Whose process it is; root's otherwise.
    uid_t user = 0;
};

std::ostream& operator<<(std::ostream& stream, const Place& place) {
    return stream << place.name;
}

constexpr int none = -25300;
constexpr int duplicate = -25299;
constexpr int unavailable = -25291;
constexpr int notPermitted = -34018;
constexpr int notTrusted = -67054;

/// A place where nothing can be kept is the same at the second run.
Place unusable(const char* name, std::function<std::string(Surroundings&)> make, int ofReading, int ofSaving,
               uid_t user = 0) {
    return Place{.name = name,
                 .make = std::move(make),
                 .onFirstRun = {ofReading, ofSaving},
                 .onSecondRun = {ofReading, ofSaving},
                 .keepsConfigs = false,
                 .user = user};
}

/// A data directory in order but for what is in place of the identity's file.
Place obstructed(const char* name, const std::function<void(const fs::path& item)>& put, int ofReading,
                 uid_t user = 0) {
    return Place{.name = name,
                 .make =
                     [put](Surroundings& around) {
                         const fs::path folder = around.root / "data" / "credentials";
                         fs::create_directories(folder);
                         fs::permissions(folder, fs::perms(0700));
                         put(folder / itemName);
                         return (around.root / "data").string();
                     },
                 .onFirstRun = {ofReading, duplicate},
                 .onSecondRun = {ofReading, duplicate},
                 .keepsConfigs = true,
                 .user = user};
}

std::vector<Place> places() {
    const auto in = [](const char* path) { return [path](Surroundings&) { return std::string(path); }; };
    const auto below = [](const char* path, const std::function<void(const fs::path&)>& put) {
        return [path = std::string(path), put](Surroundings& around) {
            put(around.root / "here");
            return (around.root / path).string();
        };
    };
    const auto dangling = [](const fs::path& path) { fs::create_symlink("/nonexistent/x", path); };
    const auto loop = [](const fs::path& path) { fs::create_symlink("here", path); };
    const auto file = [](const fs::path& path) { writeFile(path, "theirs"); };
    const auto pipe = [](const fs::path& path) { mkfifo(path.c_str(), 0666); };
    const auto device = [](const fs::path& path) { fs::create_symlink("/dev/null", path); };
    const auto folder = [](const fs::path& path) { fs::create_directory(path); };
    const auto filled = [](Surroundings& around) {
        around.newDisk().fillUpTo(0);
        return around.disk->path().string();
    };
    const auto readOnly = [](Surroundings& around) {
        around.newDisk().makeReadOnly();
        return around.disk->path().string();
    };
    const auto readOnlyHome = [](Surroundings& around) {
        around.newDisk().makeReadOnly();
        return (around.disk->path() / ".local/share/app").string();
    };
    const auto closed = [](Surroundings& around) {
        fs::create_directory(around.root / "closed");
        fs::permissions(around.root / "closed", fs::perms(0));
        return (around.root / "closed").string();
    };
    const auto othersHome = [](Surroundings& around) { return (around.root / "others/app").string(); };
    const auto tooLong = [](Surroundings& around) { return (around.root / std::string(300, 'x')).string(); };
    const auto tooDeep = [](Surroundings& around) {
        std::string path = around.root;
        for (int depth = 0; depth < 3000; ++depth) {
            path += "/x";
        }
        return path;
    };
    const auto nowhere = [](Surroundings&) { return std::string(); };
    const auto item = [](mode_t mode, const char* text, uid_t owner = 0) {
        return [mode, text, owner](const fs::path& path) {
            writeFile(path, text);
            fs::permissions(path, fs::perms(mode));
            if (owner != 0) {
                EXPECT_EQ(chown(path.c_str(), owner, owner), 0);
                EXPECT_EQ(chown(path.parent_path().c_str(), owner, owner), 0);
                EXPECT_EQ(chown(path.parent_path().parent_path().c_str(), owner, owner), 0);
            }
        };
    };

    std::vector<Place> all = {
        unusable("DanglingLink", below("here", dangling), none, unavailable),
        unusable("BehindADanglingLink", below("here/a/b", dangling), none, unavailable),
        unusable("LoopOfLinks", below("here", loop), notTrusted, notTrusted),
        unusable("BehindALoopOfLinks", below("here/a/b", loop), notTrusted, notTrusted),
        unusable("Proc", in("/proc"), none, unavailable),
        unusable("InProc", in("/proc/vorna/app"), none, unavailable),
        unusable("File", below("here", file), notTrusted, notTrusted),
        unusable("BehindAFile", below("here/a/b", file), notTrusted, notTrusted),
        unusable("Pipe", below("here", pipe), notTrusted, notTrusted),
        unusable("Device", below("here", device), notTrusted, notTrusted),
        unusable("Socket", below("here", support::makeSocket), notTrusted, notTrusted),
        unusable("FullDisk", filled, none, notPermitted),
        unusable("ReadOnlyDisk", readOnly, none, notPermitted),
        unusable("ReadOnlyHome", readOnlyHome, none, notPermitted),
        unusable("ClosedFolder", closed, notPermitted, notPermitted, nobody),
        unusable("AnotherUsersFolder", othersHome, none, notPermitted, nobody),
        unusable("NameTooLong", tooLong, notPermitted, notPermitted),
        unusable("PathTooLong", tooDeep, notPermitted, notPermitted),
        unusable("NoHome", nowhere, unavailable, unavailable, stranger),
        obstructed("ItemIsAPipe", pipe, notTrusted),
        obstructed("ItemIsALink", dangling, notTrusted),
        obstructed("ItemIsALinkToADevice", device, notTrusted),
        obstructed("ItemIsASocket", support::makeSocket, notTrusted),
        obstructed("ItemIsAFolder", folder, notTrusted),
        obstructed("ItemMayNotBeRead", item(0, record, nobody), notPermitted, nobody),
    };
    Place set = obstructed("ItemIsOpenToOthers", item(0644, record), notTrusted);
    set.onFirstRun.ofSaving = std::nullopt;
    set.onSecondRun = {std::nullopt, std::nullopt};
    all.push_back(set);
    for (const bool isFolderOfItems : {true, false}) {
        Place half = unusable(
            isFolderOfItems ? "FolderOfItemsIsAFile" : "FolderOfConfigsIsAFile",
            [isFolderOfItems](Surroundings& around) {
                fs::create_directory(around.root / "data");
                writeFile(around.root / "data" / (isFolderOfItems ? "credentials" : "preferences"), "theirs");
                return (around.root / "data").string();
            },
            notTrusted, notTrusted);
        if (!isFolderOfItems) {
            half.onFirstRun = {none, std::nullopt};
            half.onSecondRun = {std::nullopt, std::nullopt};
        }
        half.keepsConfigs = isFolderOfItems;
        all.push_back(half);
    }
    return all;
}

/// Everything below the folder, with its kind and contents; links and devices are not opened.
std::vector<std::string> everythingIn(const fs::path& folder) {
    std::vector<std::string> lines;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        struct stat status {};

        EXPECT_EQ(lstat(entry.path().c_str(), &status), 0);
        lines.push_back(entry.path().string() + " " + std::to_string(status.st_mode & S_IFMT) + " " +
                        (S_ISREG(status.st_mode) ? contentsOf(entry.path()) : std::string()));
    }
    std::ranges::sort(lines);
    return lines;
}

/// One run of a host, in its own process.
int runHost(const Place& place, const std::string& data, CredentialStoreKind kind, const fs::path& output) {
    if (std::freopen(output.c_str(), "w", stdout) == nullptr) {
        return 2;
    }
    support::setVariable("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    support::unsetVariable("HOME");
    support::unsetVariable("XDG_DATA_HOME");
    if (place.user != 0 && (setresgid(place.user, place.user, place.user) != 0 ||
                            setresuid(place.user, place.user, place.user) != 0)) {
        return 2;
    }
    // A change of user forbids a leak checker to look.
    prctl(PR_SET_DUMPABLE, 1);

    PlatformOptions options;
    options.dataDirectory = data;
    options.credentialStore = kind;
    const support::RecordedEvents host;
    Platform platform = makePlatform(options);
    platform.httpClient = host.http;
    VornaCoreSDK::UsePlatform(std::move(platform));
    VornaCoreSDK::debug = true;
    VornaCoreSDK::Init("my-app");
    if (!VornaCoreSDK::GetUserID() || !VornaCoreSDK::GetInstallTime()) {
        return 3;
    }
    SharedInstance::get().remoteConfigHelper->saveToLocal(support::tableOf({{"theme", "dark"}}));
    VornaCoreSDK::Event("still here");
    const auto reloaded = SharedInstance::get().remoteConfigHelper->loadConfigsFromLocal();
    if ((reloaded != nullptr) != place.keepsConfigs) {
        return 4;
    }
    std::printf("user %s\n", VornaCoreSDK::GetUserID()->c_str());
    std::fflush(stdout);
    return 0;
}

class BadPlace : public testing::TestWithParam<std::tuple<Place, CredentialStoreKind>> {
  protected:
    struct Run {
        int status = -1;
        std::vector<std::string> keychain;
        std::vector<std::string> configs;
        std::string user;
    };

    static Run run(const Place& place, const std::string& data, CredentialStoreKind kind) {
        const TemporaryFolder reports;
        const fs::path output = reports.path() / "output";
        ForkedProcess process([&](const std::string&) { return runHost(place, data, kind, output); });
        process.start();
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!process.hasEnded() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        EXPECT_TRUE(process.hasEnded()) << "it hangs";
        process.kill();
        Run run;
        run.status = process.wait();
        std::istringstream lines(contentsOf(output));
        for (std::string line; std::getline(lines, line);) {
            if (line.find("Keychain: ") != std::string::npos) {
                run.keychain.push_back(line);
            } else if (line.find("UserDefaults") != std::string::npos) {
                run.configs.push_back(line.substr(0, line.find(": ")));
            } else if (line.starts_with("user ")) {
                run.user = line;
            }
        }
        return run;
    }

    static std::vector<std::string> linesOf(const Statuses& statuses) {
        std::vector<std::string> lines;
        if (statuses.ofReading) {
            lines.push_back("Error reading from Keychain: " + std::to_string(*statuses.ofReading));
        }
        if (statuses.ofSaving) {
            lines.push_back("Error saving to Keychain: " + std::to_string(*statuses.ofSaving));
        }
        return lines;
    }
};

TEST_P(BadPlace, DoesNotKeepInitFromGoingOn) {
    const auto& [place, kind] = GetParam();
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can make all of these places";
    }
    if (!SmallDisk::whyNot().empty()) {
        GTEST_SKIP() << SmallDisk::whyNot();
    }
    Surroundings around;
    ASSERT_EQ(chmod(around.root.c_str(), 0755), 0);
    const std::string data = place.make(around);
    const std::vector<std::string> before = everythingIn(around.root);

    const Run first = run(place, data, kind);
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(first.keychain, linesOf(place.onFirstRun));
    const Run second = run(place, data, kind);
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.keychain, linesOf(place.onSecondRun));

    EXPECT_EQ(first.user == second.user, !place.onSecondRun.ofReading.has_value());
    const std::string saved = place.keepsConfigs ? "[VornaSDK] Configs saved to UserDefaults"
                                                 : "[VornaSDK] Configs could not be saved to UserDefaults";
    const std::string found = "[VornaSDK] Configs loaded from UserDefaults";
    const std::string missed = "[VornaSDK] No configs found in UserDefaults";
    const std::string after = place.keepsConfigs ? found : missed;
    EXPECT_EQ(first.configs, (std::vector<std::string>{missed, saved, after}));
    EXPECT_EQ(second.configs, (std::vector<std::string>{after, saved, after}));

    const std::vector<std::string> now = everythingIn(around.root);
    if (place.onFirstRun.ofSaving) {
        for (const std::string& line : before) {
            EXPECT_THAT(now, testing::Contains(line)) << "it is gone";
        }
    } else {
        EXPECT_THAT(now, testing::Contains(
                             testing::EndsWith(place.onFirstRun.ofReading == notTrusted ? record : "theirs")))
            << "it is gone";
    }
    if (!place.keepsConfigs && place.onFirstRun.ofSaving) {
        EXPECT_EQ(now, before);
    }
}

INSTANTIATE_TEST_SUITE_P(Init, BadPlace,
                         testing::Combine(testing::ValuesIn(places()),
                                          testing::Values(CredentialStoreKind::file,
                                                          CredentialStoreKind::automatic)),
                         [](const auto& row) {
                             const bool isFile = std::get<1>(row.param) == CredentialStoreKind::file;
                             return std::string(std::get<0>(row.param).name) +
                                    (isFile ? "WithAFile" : "WithAFileAndAKeyring");
                         });

}  // namespace
}  // namespace vorna
