// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/JsonFilePreferences.h>

#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {
namespace {

namespace fs = std::filesystem;

using support::contentsOf;
using support::TemporaryFolder;

PreferenceValue text(std::string value) {
    return {std::move(value)};
}

/// A table of that many entries which all say the generation.
PreferenceValue tableOf(int generation, int entries = 300) {
    PreferenceValue::Dictionary table;
    for (int key = 0; key < entries; ++key) {
        table.emplace("key_" + std::to_string(key), text("generation " + std::to_string(generation)));
    }
    return {std::move(table)};
}

class PreferencesFile : public testing::Test {
  protected:
    void put(std::string_view contents) {
        fs::create_directories(file_.parent_path());
        std::ofstream(file_, std::ios::binary) << contents;
    }

    /// Names in the file's folder.
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const fs::directory_entry& entry : fs::directory_iterator(file_.parent_path())) {
            found.insert(entry.path().filename());
        }
        return found;
    }

    static mode_t modeOf(const fs::path& path) {
        struct stat status {};

        return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
    }

    JsonFilePreferences open() const { return JsonFilePreferences(file_.string()); }

    const TemporaryFolder temporary_;
    const fs::path root_ = temporary_.path();
    fs::path file_ = root_ / "app" / "preferences.json";
    const std::set<std::string> fileAlone_ = {"preferences.json"};
};

TEST_F(PreferencesFile, HasNoValuesBeforeTheFirstSaveAndIsNotMadeByReading) {
    EXPECT_EQ(open().value("key"), std::nullopt);
    EXPECT_FALSE(fs::exists(file_.parent_path()));
}

TEST_F(PreferencesFile, GivesAnotherObjectWhatOneHasSaved) {
    EXPECT_TRUE(open().setValue("key", text("value")));
    EXPECT_TRUE(open().setValue("other", {std::int64_t{7}}));
    EXPECT_TRUE(open().setValue("key", text("")));
    EXPECT_EQ(open().value("key"), text(""));
    EXPECT_EQ(open().value("other"), PreferenceValue{std::int64_t{7}});
    EXPECT_EQ(open().value("KEY"), std::nullopt);
    EXPECT_EQ(contentsOf(file_), "{\"key\":\"\",\"other\":7}\n");
    EXPECT_EQ(names(), fileAlone_);
}

TEST_F(PreferencesFile, TellsIntegersFromIntegralReals) {
    EXPECT_TRUE(open().setValue("integer", {std::int64_t{5}}));
    EXPECT_TRUE(open().setValue("real", {5.0}));
    EXPECT_EQ(contentsOf(file_), "{\"integer\":5,\"real\":5.0}\n");
    EXPECT_EQ(open().value("integer"), PreferenceValue{std::int64_t{5}});
    EXPECT_EQ(open().value("real"), PreferenceValue{5.0});
}

TEST_F(PreferencesFile, BelongsToItsOwnerAloneWhateverTheMaskOfTheProcess) {
    for (const mode_t mask : {mode_t{0}, mode_t{077}, mode_t{0277}}) {
        fs::remove_all(root_ / "app");
        const mode_t former = umask(mask & 0277U);
        const bool saved = open().setValue("key", text("value"));
        umask(former);
        // With a mask that takes the owner's right to write, the folder that is made is closed to its owner.
        if (mask == 0277U && geteuid() != 0) {
            continue;
        }
        EXPECT_TRUE(saved);
        EXPECT_EQ(modeOf(file_), 0600U);
        EXPECT_EQ(modeOf(file_.parent_path()) & 0077U, 0U);
    }
}

TEST_F(PreferencesFile, MakesFoldersForTheOwnerAlone) {
    file_ = root_ / "a" / "b" / "preferences.json";
    EXPECT_TRUE(open().setValue("key", text("value")));
    EXPECT_EQ(modeOf(root_ / "a"), 0700U);
    EXPECT_EQ(modeOf(root_ / "a" / "b"), 0700U);
}

TEST_F(PreferencesFile, LeavesTheRightsOfAFolderThatWasThereAlone) {
    fs::create_directories(file_.parent_path());
    ASSERT_EQ(chmod(file_.parent_path().c_str(), 0755), 0);
    EXPECT_TRUE(open().setValue("key", text("value")));
    EXPECT_EQ(modeOf(file_.parent_path()), 0755U);
}

TEST_F(PreferencesFile, BecomesPrivateWhenItWasNot) {
    put("{\"a\":1}");
    ASSERT_EQ(chmod(file_.c_str(), 0644), 0);
    EXPECT_TRUE(open().setValue("b", {true}));
    EXPECT_EQ(modeOf(file_), 0600U);
    EXPECT_EQ(contentsOf(file_), "{\"a\":1,\"b\":true}\n");
}

TEST_F(PreferencesFile, KeepsOtherKeysAlsoOfKindsThatAreNeverSaved) {
    put(R"({"z":null,"VornaRemoteConfigs":{"old":"1"},"big":123456789012345678901234567890,"r":1.50,"n":[null,{"m":1e999}]})");
    EXPECT_TRUE(open().setValue("VornaRemoteConfigs", tableOf(1, 1)));
    EXPECT_EQ(
        contentsOf(file_),
        R"({"VornaRemoteConfigs":{"key_0":"generation 1"},"big":123456789012345678901234567890,"n":[null,{"m":1e999}],"r":1.50,"z":null})"
        "\n");
}

TEST_F(PreferencesFile, RefusesWhatItCouldNotReadAgain) {
    JsonFilePreferences preferences = open();
    ASSERT_TRUE(preferences.setValue("key", text("value")));
    const std::string before = contentsOf(file_);
    EXPECT_FALSE(preferences.setValue("key", {std::numeric_limits<double>::quiet_NaN()}));
    EXPECT_FALSE(preferences.setValue("key", {std::numeric_limits<double>::infinity()}));
    EXPECT_FALSE(preferences.setValue("key", text("\xC3\x28")));
    EXPECT_FALSE(preferences.setValue("\xFF", text("value")));
    EXPECT_FALSE(preferences.setValue("key", {PreferenceValue::Dictionary{{"\xFF", text("value")}}}));
    EXPECT_FALSE(preferences.setValue("key", text(std::string(JsonFilePreferences::largestFile, 'x'))));
    EXPECT_EQ(contentsOf(file_), before);
    EXPECT_EQ(names(), fileAlone_);
}

struct Foreign {
    const char* name;
    std::string contents;
};

std::ostream& operator<<(std::ostream& stream, const Foreign& row) {
    return stream << row.name;
}

class ForeignPreferencesFile : public PreferencesFile, public testing::WithParamInterface<Foreign> {};

TEST_P(ForeignPreferencesFile, CountsAsNoValuesAndIsReplacedWholeByTheNextSave) {
    put(GetParam().contents);
    EXPECT_EQ(open().value("VornaRemoteConfigs"), std::nullopt);
    EXPECT_EQ(contentsOf(file_), GetParam().contents);
    EXPECT_TRUE(open().setValue("a", text("1")));
    EXPECT_EQ(contentsOf(file_), "{\"a\":\"1\"}\n");
}

INSTANTIATE_TEST_SUITE_P(
    Contents, ForeignPreferencesFile,
    testing::Values(Foreign{"Empty", ""}, Foreign{"Torn", R"({"VornaRemoteConfigs":{"theme":"da)"},
                    Foreign{"ZeroBytes", std::string(4096, '\0')},
                    Foreign{"ZeroBytesAtTheEnd", R"({"VornaRemoteConfigs":{}})" + std::string(100, '\0')},
                    Foreign{"Array", R"([{"VornaRemoteConfigs":{}}])"},
                    Foreign{"Settings", "[General]\nVornaRemoteConfigs=1\n"},
                    Foreign{"NotUtf8", "{\"VornaRemoteConfigs\":\"\xFF\"}"},
                    Foreign{"ByteOrderMark", "\xEF\xBB\xBF{\"VornaRemoteConfigs\":{}}"}),
    [](const auto& row) { return row.param.name; });

TEST_F(PreferencesFile, CountsAsUnreadableAboveItsLargestSize) {
    put("{\"a\":1}");
    const auto blanksTo = [this](std::size_t size) {
        std::ofstream stream(file_, std::ios::binary | std::ios::app);
        const std::string blanks(size - fs::file_size(file_), ' ');
        stream << blanks;
    };
    blanksTo(JsonFilePreferences::largestFile);
    EXPECT_EQ(open().value("a"), PreferenceValue{std::int64_t{1}});
    blanksTo(JsonFilePreferences::largestFile + 1);
    EXPECT_EQ(open().value("a"), std::nullopt);
    EXPECT_TRUE(open().setValue("b", {true}));
    EXPECT_EQ(contentsOf(file_), "{\"b\":true}\n");
}

TEST_F(PreferencesFile, IsNotReadFromAPipeWhichItReplaces) {
    fs::create_directories(file_.parent_path());
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_EQ(open().value("a"), std::nullopt);
    EXPECT_TRUE(open().setValue("a", text("1")));
    EXPECT_EQ(open().value("a"), text("1"));
}

TEST_F(PreferencesFile, CannotBeSavedWhereAFolderHasItsName) {
    fs::create_directories(file_ / "within");
    EXPECT_EQ(open().value("a"), std::nullopt);
    EXPECT_FALSE(open().setValue("a", text("1")));
    EXPECT_EQ(names(), fileAlone_);
}

TEST_F(PreferencesFile, CannotBeSavedWhereAFileHasTheNameOfItsFolder) {
    std::ofstream(root_ / "app") << "in the way";
    EXPECT_EQ(open().value("a"), std::nullopt);
    EXPECT_FALSE(open().setValue("a", text("1")));
    EXPECT_EQ(contentsOf(root_ / "app"), "in the way");
}

TEST_F(PreferencesFile, HasNeitherValuesNorSavesWithoutAName) {
    for (const char* const name : {"", "/", "/nonexistent/"}) {
        JsonFilePreferences preferences(name);
        EXPECT_EQ(preferences.value("a"), std::nullopt) << name;
        EXPECT_FALSE(preferences.setValue("a", text("1"))) << name;
    }
}

TEST_F(PreferencesFile, MayBeNamedRelativeToTheWorkingFolder) {
    fs::current_path(root_);
    EXPECT_TRUE(JsonFilePreferences("preferences.json").setValue("a", text("1")));
    EXPECT_EQ(JsonFilePreferences((root_ / "preferences.json").string()).value("a"), text("1"));
}

TEST_F(PreferencesFile, LeavesASymbolicLinkAndReplacesWhatItLeadsTo) {
    put("");
    fs::create_directories(root_ / "dotfiles");
    const fs::path target = root_ / "dotfiles" / "real.json";
    std::ofstream(target) << "{\"a\":1}";
    fs::remove(file_);
    fs::create_symlink("../dotfiles/real.json", file_);
    EXPECT_EQ(open().value("a"), PreferenceValue{std::int64_t{1}});
    EXPECT_TRUE(open().setValue("b", {true}));
    EXPECT_TRUE(fs::is_symlink(file_));
    EXPECT_EQ(contentsOf(target), "{\"a\":1,\"b\":true}\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(root_ / "dotfiles"), fs::directory_iterator()), 1);
}

TEST_F(PreferencesFile, IsMadeWhereALinkLeadsToNothingYet) {
    fs::create_directories(file_.parent_path());
    fs::create_symlink(root_ / "elsewhere" / "real.json", file_);
    EXPECT_EQ(open().value("a"), std::nullopt);
    EXPECT_TRUE(open().setValue("a", text("1")));
    EXPECT_EQ(contentsOf(root_ / "elsewhere" / "real.json"), "{\"a\":\"1\"}\n");
    EXPECT_TRUE(fs::is_symlink(file_));
}

TEST_F(PreferencesFile, IsNotSavedThroughACircleOfLinks) {
    fs::create_directories(file_.parent_path());
    fs::create_symlink("other.json", file_);
    fs::create_symlink("preferences.json", file_.parent_path() / "other.json");
    EXPECT_EQ(open().value("a"), std::nullopt);
    EXPECT_FALSE(open().setValue("a", text("1")));
}

TEST_F(PreferencesFile, IsNotWrittenThroughALinkPlantedAtTheNameOfTheUnfinishedFile) {
    put("{\"a\":1}");
    std::ofstream(root_ / "precious") << "precious";
    fs::create_symlink(root_ / "precious", file_.parent_path() / ".preferences.json.new");
    EXPECT_TRUE(open().setValue("b", {true}));
    EXPECT_EQ(contentsOf(root_ / "precious"), "precious");
    EXPECT_EQ(contentsOf(file_), "{\"a\":1,\"b\":true}\n");
    EXPECT_EQ(names(), fileAlone_);
}

TEST_F(PreferencesFile, StaysAsItIsInAFolderThatMayNotBeWrittenTo) {
    put(R"({"a":"old"})");
    ASSERT_EQ(chmod(root_.c_str(), 0755), 0);
    ASSERT_EQ(chmod(file_.parent_path().c_str(), 0555), 0);
    ASSERT_EQ(chmod(file_.c_str(), 0644), 0);
    constexpr uid_t nobody = 65534;
    // The superuser may write everywhere.
    const bool wasSuperuser = geteuid() == 0;
    if (wasSuperuser) {
        ASSERT_EQ(seteuid(nobody), 0);
    }
    EXPECT_FALSE(open().setValue("a", text("new")));
    EXPECT_EQ(open().value("a"), text("old"));
    EXPECT_EQ(names(), fileAlone_);
    if (wasSuperuser) {
        ASSERT_EQ(seteuid(0), 0);
    }
    ASSERT_EQ(chmod(file_.parent_path().c_str(), 0755), 0);
}

TEST_F(PreferencesFile, IsReplacedWhenItMayNotBeRead) {
    put(R"({"a":"secret"})");
    ASSERT_EQ(chmod(root_.c_str(), 0755), 0);
    ASSERT_EQ(chmod(file_.parent_path().c_str(), 0777), 0);
    ASSERT_EQ(chmod(file_.c_str(), 0000), 0);
    constexpr uid_t nobody = 65534;
    const bool wasSuperuser = geteuid() == 0;
    if (wasSuperuser) {
        ASSERT_EQ(seteuid(nobody), 0);
    }
    EXPECT_EQ(open().value("a"), std::nullopt);
    EXPECT_TRUE(open().setValue("b", text("new")));
    EXPECT_EQ(open().value("b"), text("new"));
    EXPECT_EQ(open().value("a"), std::nullopt);
    if (wasSuperuser) {
        ASSERT_EQ(seteuid(0), 0);
    }
}

TEST_F(PreferencesFile, StaysAsItIsOnAFullDisk) {
    // A small disk of our own, seen by this process alone.
    const int flags = geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
    fs::create_directories(file_.parent_path());
    if (unshare(flags) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", file_.parent_path().c_str(), "tmpfs", 0, "size=256k") != 0) {
        GTEST_SKIP() << "this system lets no test mount a disk of its own";
    }
    EXPECT_TRUE(open().setValue("table", tableOf(1)));
    EXPECT_FALSE(open().setValue("table", text(std::string(300'000, 'x'))));
    EXPECT_EQ(open().value("table"), tableOf(1));
    EXPECT_EQ(names(), fileAlone_);

    std::ofstream filler(file_.parent_path() / "filler");
    while (filler << std::string(4096, 'x') << std::flush) {
    }
    filler.close();
    EXPECT_FALSE(open().setValue("table", tableOf(2)));
    EXPECT_EQ(open().value("table"), tableOf(1));
    fs::remove(file_.parent_path() / "filler");
    EXPECT_EQ(names(), fileAlone_);
    EXPECT_TRUE(open().setValue("table", tableOf(2)));
    EXPECT_EQ(open().value("table"), tableOf(2));
    umount2(file_.parent_path().c_str(), MNT_DETACH);
}

TEST_F(PreferencesFile, StaysAsItIsWhenTheProcessMayNotWriteFilesOfThatSize) {
    ASSERT_TRUE(open().setValue("table", tableOf(1)));
    ASSERT_NE(std::signal(SIGXFSZ, SIG_IGN), SIG_ERR);
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit small{4096, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool saved = open().setValue("table", tableOf(2));
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &former), 0);
    EXPECT_FALSE(saved);
    EXPECT_EQ(open().value("table"), tableOf(1));
    EXPECT_EQ(names(), fileAlone_);
}

TEST_F(PreferencesFile, IsNotEmptiedBecauseTheProcessHasNoFileDescriptorsLeft) {
    ASSERT_TRUE(open().setValue("a", text("1")));
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    // Room for one more open file, for two, and so on, until a save succeeds.
    const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(next, 0);
    close(next);
    bool saved = false;
    for (rlim_t room = 0; !saved && room < 10; ++room) {
        const rlimit small{static_cast<rlim_t>(next) + room, former.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &small), 0);
        saved = open().setValue("b", text("2"));
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);
        EXPECT_EQ(open().value("a"), text("1")) << room;
        EXPECT_EQ(open().value("b").has_value(), saved) << room;
    }
    EXPECT_TRUE(saved);
}

TEST_F(PreferencesFile, IsTheOldOrTheNewOneAfterAKillInTheMidstOf200Saves) {
    ASSERT_TRUE(open().setValue("other", text("kept")));
    ASSERT_TRUE(open().setValue("VornaRemoteConfigs", tableOf(0)));
    int killedBeforeTheEnd = 0;
    for (int round = 0; round < 20; ++round) {
        const int first = round * 1000;
        ASSERT_TRUE(open().setValue("VornaRemoteConfigs", tableOf(first)));
        std::array<int, 2> pipes{};
        ASSERT_EQ(pipe(pipes.data()), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            JsonFilePreferences preferences = open();
            for (int save = 1; save <= 200; ++save) {
                if (!preferences.setValue("VornaRemoteConfigs", tableOf(first + save))) {
                    _exit(2);
                }
                const int done = first + save;
                if (write(pipes[1], &done, sizeof done) != sizeof done) {
                    _exit(3);
                }
            }
            _exit(0);
        }
        close(pipes[1]);
        // Some saves on, and then somewhere within one.
        int lastSaved = first;
        int said = 0;
        for (int count = 0; count <= round && read(pipes[0], &said, sizeof said) == sizeof said; ++count) {
            lastSaved = said;
        }
        const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(137 * round);
        while (std::chrono::steady_clock::now() < until) {
        }
        kill(child, SIGKILL);
        while (read(pipes[0], &said, sizeof said) == sizeof said) {
            lastSaved = said;
        }
        close(pipes[0]);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        killedBeforeTheEnd += WIFSIGNALED(status) ? 1 : 0;
        ASSERT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << status;

        const std::optional<PreferenceValue> table = open().value("VornaRemoteConfigs");
        ASSERT_TRUE(table);
        EXPECT_TRUE(*table == tableOf(lastSaved) || *table == tableOf(lastSaved + 1)) << lastSaved;
        EXPECT_EQ(open().value("other"), text("kept"));
    }
    EXPECT_GT(killedBeforeTheEnd, 0);
    EXPECT_TRUE(open().setValue("VornaRemoteConfigs", tableOf(1)));
    EXPECT_EQ(names(), fileAlone_);
}

TEST_F(PreferencesFile, LosesNoKeyToSeveralThreadsAndObjects) {
    constexpr int threadCount = 8;
    constexpr int keysEach = 10;
    JsonFilePreferences shared = open();
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([this, thread, &shared] {
            JsonFilePreferences own = open();
            for (int count = 0; count < keysEach; ++count) {
                const std::string key = std::to_string(thread) + "." + std::to_string(count);
                EXPECT_TRUE((count % 2 == 0 ? shared : own).setValue(key, text(key)));
                EXPECT_EQ(shared.value(key), text(key));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int thread = 0; thread < threadCount; ++thread) {
        for (int count = 0; count < keysEach; ++count) {
            const std::string key = std::to_string(thread) + "." + std::to_string(count);
            EXPECT_EQ(shared.value(key), text(key));
        }
    }
    EXPECT_EQ(names(), fileAlone_);
}

TEST_F(PreferencesFile, LosesNoKeyToSeveralProcessesAndIsNeverTorn) {
    constexpr int processCount = 4;
    constexpr int savesEach = 20;
    ASSERT_TRUE(open().setValue("common", tableOf(0)));
    std::vector<pid_t> children;
    for (int process = 0; process < processCount; ++process) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            JsonFilePreferences preferences = open();
            for (int save = 0; save < savesEach; ++save) {
                const std::string key = std::to_string(process) + "." + std::to_string(save);
                if (!preferences.setValue(key, text(key)) ||
                    !preferences.setValue("common", tableOf(process)) ||
                    preferences.value(key) != text(key)) {
                    _exit(1);
                }
            }
            _exit(0);
        }
        children.push_back(child);
    }
    // What is read meanwhile is whole.
    const std::array<PreferenceValue, processCount> tables{tableOf(0), tableOf(1), tableOf(2), tableOf(3)};
    int torn = 0;
    for (std::size_t running = children.size(); running > 0;) {
        const std::optional<PreferenceValue> table = open().value("common");
        torn += table && std::find(tables.begin(), tables.end(), *table) != tables.end() ? 0 : 1;
        int status = 0;
        if (waitpid(-1, &status, WNOHANG) > 0) {
            EXPECT_EQ(status, 0);
            --running;
        }
    }
    EXPECT_EQ(torn, 0);
    for (int process = 0; process < processCount; ++process) {
        for (int save = 0; save < savesEach; ++save) {
            const std::string key = std::to_string(process) + "." + std::to_string(save);
            EXPECT_EQ(open().value(key), text(key));
        }
    }
    EXPECT_EQ(names(), fileAlone_);
}

TEST_F(PreferencesFile, IsSavedAllTheSameWhenAnotherProcessHoldsTheFolderForTooLong) {
    ASSERT_TRUE(open().setValue("a", text("1")));
    const int folder = ::open(file_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(folder, LOCK_EX), 0);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_TRUE(open().setValue("b", text("2")));
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(60));
    close(folder);
    EXPECT_EQ(open().value("a"), text("1"));
    EXPECT_EQ(open().value("b"), text("2"));
    EXPECT_EQ(names(), fileAlone_);
}

}  // namespace
}  // namespace vorna
