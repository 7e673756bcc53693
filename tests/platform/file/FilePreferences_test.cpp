// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/file/FilePreferences.h>

#include <tests/support/SmallDisk.h>
#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {
namespace {

namespace fs = std::filesystem;

using support::contentsOf;
using support::namesIn;
using support::SmallDisk;
using support::TemporaryFolder;
using support::writeFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using Table = Preferences::Table;

constexpr const char* key = "VornaRemoteConfigs";

/// A table over a map.
class MapTable final : public TextTable {
  public:
    explicit MapTable(Table entries) : entries_(std::move(entries)) {}

    std::size_t size() const noexcept override { return entries_.size(); }

    std::optional<std::string_view> find(std::string_view /*key*/) const noexcept override {
        return std::nullopt;
    }

    void
    forEach(const std::function<void(std::string_view key, std::string_view value)>& visit) const override {
        for (const auto& [name, value] : entries_) {
            visit(name, value);
        }
    }

  private:
    const Table entries_;
};

/// The same table, entry by entry.
std::optional<Table> entriesIn(const FilePreferences& preferences, std::string_view name) {
    Table entries;
    const bool isRead = preferences.readTable(name, [&](std::string_view entry, std::string_view text) {
        entries.insert_or_assign(std::string(entry), std::string(text));
    });
    return isRead ? std::optional(entries) : std::nullopt;
}

Result<void, std::error_code> failure(std::errc reason) {
    return Unexpected(std::make_error_code(reason));
}

class PreferenceFiles : public testing::Test {
  protected:
    void put(std::string_view contents) const {
        fs::create_directories(folder_);
        writeFile(file_, contents);
    }

    static mode_t modeOf(const fs::path& path) {
        struct stat status = {};

        return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
    }

    const TemporaryFolder temporary_;
    const fs::path root_ = temporary_.path();
    const fs::path data_ = root_ / "app";
    const fs::path folder_ = data_ / "preferences";
    const fs::path file_ = folder_ / "VornaRemoteConfigs.json";
    const fs::path formerFile_ = data_ / "preferences.json";
    FilePreferences preferences_{data_.string()};
};

TEST_F(PreferenceFiles, HaveNoTablesAtFirstAndAreNotCreatedByReading) {
    EXPECT_EQ(preferences_.table(key), std::nullopt);
    EXPECT_FALSE(fs::exists(data_));
}

TEST_F(PreferenceFiles, AreSharedBetweenObjects) {
    EXPECT_TRUE(preferences_.setTable(key, {{"theme", "dark"}}));
    EXPECT_TRUE(preferences_.setTable("other", {}));
    EXPECT_TRUE(preferences_.setTable(key, {{"a", ""}, {"ğ", "\"1\"\n"}}));
    const FilePreferences another(data_.string() + "/");
    EXPECT_EQ(another.table(key), (Table{{"a", ""}, {"ğ", "\"1\"\n"}}));
    EXPECT_EQ(another.table("other"), Table());
    EXPECT_EQ(another.table("Other"), std::nullopt);
    EXPECT_EQ(contentsOf(file_), "{\"a\":\"\",\"ğ\":\"\\\"1\\\"\\n\"}\n");
    EXPECT_THAT(namesIn(folder_), UnorderedElementsAre("VornaRemoteConfigs.json", "other.json"));
}

TEST_F(PreferenceFiles, AreTheSameEntryByEntry) {
    const Table table = {{"", ""}, {"a", "\"1\"\n"}, {"ğ", std::string(100'000, 'x')}};
    EXPECT_EQ(entriesIn(preferences_, key), std::nullopt);
    EXPECT_TRUE(preferences_.writeTable(key, MapTable(table)));
    EXPECT_EQ(entriesIn(preferences_, key), table);
    EXPECT_EQ(preferences_.table(key), table);
    const std::string written = contentsOf(file_);
    EXPECT_TRUE(preferences_.setTable(key, table));
    EXPECT_EQ(contentsOf(file_), written);
    put(R"({"a":"1","b":"2","a":"3"})");
    EXPECT_EQ(entriesIn(preferences_, key), (Table{{"a", "3"}, {"b", "2"}}));
}

TEST_F(PreferenceFiles, KeepEachKeysTableInItsOwnFile) {
    using namespace std::string_literals;
    const std::vector<std::string> keys = {"",      ".",    "..", "../x", "/etc/x", "a/b", "a%2Fb",
                                           "a\0b"s, "\xFF", "~",  "ğ",    "A",      "a ",  "a"};
    for (const std::string& name : keys) {
        EXPECT_TRUE(preferences_.setTable(name, {{"is", std::to_string(&name - keys.data())}})) << name;
    }
    for (const std::string& name : keys) {
        EXPECT_EQ(preferences_.table(name), (Table{{"is", std::to_string(&name - keys.data())}})) << name;
    }
    EXPECT_EQ(namesIn(folder_).size(), keys.size());
    EXPECT_THAT(namesIn(data_), ElementsAre("preferences"));
    EXPECT_EQ(preferences_.setTable(std::string(300, 'x'), {}), failure(std::errc::filename_too_long));
}

TEST_F(PreferenceFiles, ArePrivateRegardlessOfTheUmask) {
    for (const mode_t mask : {mode_t{0}, mode_t{022}, mode_t{077}}) {
        fs::remove_all(data_);
        const mode_t former = umask(mask);
        const bool isSaved = preferences_.setTable(key, {}).has_value();
        umask(former);
        EXPECT_TRUE(isSaved);
        EXPECT_EQ(modeOf(file_), 0600U);
        EXPECT_EQ(modeOf(folder_), 0700U);
        EXPECT_EQ(modeOf(data_), 0700U);
    }
}

TEST_F(PreferenceFiles, BecomePrivateIfTheyWereNot) {
    put("{}");
    ASSERT_EQ(chmod(file_.c_str(), 0644), 0);
    EXPECT_TRUE(preferences_.setTable(key, {}));
    EXPECT_EQ(modeOf(file_), 0600U);
}

TEST_F(PreferenceFiles, RejectTablesThatCouldNotBeReadAgain) {
    ASSERT_TRUE(preferences_.setTable(key, {{"a", "1"}}));
    EXPECT_EQ(preferences_.setTable(key, {{"a", "\xC3\x28"}}), failure(std::errc::illegal_byte_sequence));
    EXPECT_EQ(preferences_.setTable(key, {{"\xFF", "1"}}), failure(std::errc::illegal_byte_sequence));
    EXPECT_EQ(preferences_.setTable(key, {{"a", std::string(FilePreferences::largestFile, 'x')}}),
              failure(std::errc::file_too_large));
    EXPECT_EQ(preferences_.writeTable(key, MapTable(Table{{"a", "\xC3\x28"}})),
              failure(std::errc::illegal_byte_sequence));
    EXPECT_EQ(preferences_.writeTable(key, MapTable(Table{{"\xFF", "1"}, {"\xFF\xFF", "1"}})),
              failure(std::errc::illegal_byte_sequence));
    EXPECT_EQ(
        preferences_.writeTable(key, MapTable(Table{{"a", std::string(FilePreferences::largestFile, 'x')}})),
        failure(std::errc::file_too_large));
    EXPECT_EQ(preferences_.table(key), (Table{{"a", "1"}}));
    EXPECT_THAT(namesIn(folder_), ElementsAre("VornaRemoteConfigs.json"));
}

struct Foreign {
    const char* name;
    std::string contents;
};

std::ostream& operator<<(std::ostream& stream, const Foreign& row) {
    return stream << row.name;
}

class ForeignPreferenceFile : public PreferenceFiles, public testing::WithParamInterface<Foreign> {};

TEST_P(ForeignPreferenceFile, CountsAsNoTableAndIsReplacedByTheNextSave) {
    put(GetParam().contents);
    EXPECT_EQ(preferences_.table(key), std::nullopt);
    EXPECT_EQ(entriesIn(preferences_, key), std::nullopt);
    EXPECT_EQ(contentsOf(file_), GetParam().contents);
    EXPECT_TRUE(preferences_.setTable(key, {{"a", "1"}}));
    EXPECT_EQ(contentsOf(file_), "{\"a\":\"1\"}\n");
}

INSTANTIATE_TEST_SUITE_P(Contents, ForeignPreferenceFile,
                         testing::Values(Foreign{"Empty", ""}, Foreign{"Torn", R"({"theme":"da)"},
                                         Foreign{"ZeroBytes", std::string(4096, '\0')},
                                         Foreign{"ZeroBytesAtTheEnd", "{}" + std::string(100, '\0')},
                                         Foreign{"Settings", "[General]\ntheme=dark\n"},
                                         Foreign{"NotUtf8", "{\"theme\":\"\xFF\"}"},
                                         Foreign{"ByteOrderMark", "\xEF\xBB\xBF{}"}, Foreign{"Null", "null"},
                                         Foreign{"Text", R"("a=1")"}, Foreign{"Integer", "1"},
                                         Foreign{"Array", R"([{"a":"1"}])"},
                                         Foreign{"TableWithNull", R"({"a":"1","b":null})"},
                                         Foreign{"TableWithABoolean", R"({"a":"1","b":false})"},
                                         Foreign{"TableWithAnInteger", R"({"a":"1","b":2})"},
                                         Foreign{"TableWithAReal", R"({"a":"1","b":2.0})"},
                                         Foreign{"TableWithAnArray", R"({"a":"1","b":[]})"},
                                         Foreign{"TableWithATable", R"({"a":"1","b":{}})"}),
                         [](const auto& row) { return row.param.name; });

TEST_F(PreferenceFiles, AreNotReadAboveTheMaximumSize) {
    put("{\"a\":\"1\"}");
    fs::resize_file(file_, FilePreferences::largestFile + 1);
    EXPECT_EQ(preferences_.table(key), std::nullopt);
    put("{\"a\":\"1\"}" + std::string(FilePreferences::largestFile - 9, ' '));
    EXPECT_EQ(preferences_.table(key), (Table{{"a", "1"}}));
}

TEST_F(PreferenceFiles, DoNotReadAPipeButReplaceIt) {
    fs::create_directories(folder_);
    ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0);
    EXPECT_EQ(preferences_.table(key), std::nullopt);
    EXPECT_TRUE(preferences_.setTable(key, {}));
    EXPECT_EQ(preferences_.table(key), Table());
}

TEST_F(PreferenceFiles, AreNeitherReadNorWrittenThroughALink) {
    const fs::path target = root_ / "target.json";
    writeFile(target, "{\"a\":\"theirs\"}");
    fs::create_directories(folder_);
    fs::create_symlink(target, file_);
    EXPECT_EQ(preferences_.table(key), std::nullopt);
    EXPECT_TRUE(preferences_.setTable(key, {{"a", "ours"}}));
    EXPECT_EQ(preferences_.table(key), (Table{{"a", "ours"}}));
    EXPECT_EQ(contentsOf(target), "{\"a\":\"theirs\"}");
}

TEST_F(PreferenceFiles, AreNeitherReadNorWrittenInAFolderThatIsALink) {
    ASSERT_TRUE(preferences_.setTable(key, {{"a", "1"}}));
    fs::rename(folder_, root_ / "moved");
    fs::create_directory_symlink(root_ / "moved", folder_);
    EXPECT_EQ(preferences_.table(key), std::nullopt);
    EXPECT_FALSE(preferences_.setTable(key, {}));
    EXPECT_EQ(contentsOf(root_ / "moved" / "VornaRemoteConfigs.json"), "{\"a\":\"1\"}\n");
}

TEST_F(PreferenceFiles, MayBeInADataFolderThatIsALink) {
    fs::create_directory(root_ / "elsewhere");
    fs::create_directory_symlink(root_ / "elsewhere", data_);
    EXPECT_TRUE(preferences_.setTable(key, {{"a", "1"}}));
    EXPECT_EQ(preferences_.table(key), (Table{{"a", "1"}}));
}

TEST_F(PreferenceFiles, CannotBeSavedIfTheirFoldersCannotBeCreated) {
    EXPECT_EQ(FilePreferences("").table(key), std::nullopt);
    EXPECT_EQ(FilePreferences("").setTable(key, {}), failure(std::errc::no_such_file_or_directory));

    fs::create_symlink("/nonexistent/x", root_ / "dangling");
    FilePreferences unmounted(root_ / "dangling" / "app");
    EXPECT_EQ(unmounted.table(key), std::nullopt);
    EXPECT_EQ(unmounted.setTable(key, {}), failure(std::errc::no_such_file_or_directory));

    writeFile(data_, "in the way");
    EXPECT_EQ(preferences_.table(key), std::nullopt);
    EXPECT_EQ(preferences_.setTable(key, {}), failure(std::errc::not_a_directory));
    EXPECT_EQ(contentsOf(data_), "in the way");
}

TEST_F(PreferenceFiles, KeepTheOldTableIfTheDiskIsFull) {
    if (!SmallDisk::whyNot().empty()) {
        GTEST_SKIP() << SmallDisk::whyNot();
    }
    const SmallDisk disk;
    FilePreferences preferences(disk.path().string());
    ASSERT_TRUE(preferences.setTable(key, {{"a", "old"}}));
    disk.fillUpTo(0);
    EXPECT_EQ(preferences.setTable(key, {{"a", "new"}}), failure(std::errc::no_space_on_device));
    EXPECT_EQ(preferences.table(key), (Table{{"a", "old"}}));
    EXPECT_THAT(namesIn(disk.path() / "preferences"), ElementsAre("VornaRemoteConfigs.json"));
}

TEST_F(PreferenceFiles, AreCompleteForConcurrentReaders) {
    const auto tableOf = [](int generation) {
        Table table;
        for (int entry = 0; entry < 300; ++entry) {
            table.emplace("key_" + std::to_string(entry), "generation " + std::to_string(generation));
        }
        return table;
    };
    ASSERT_TRUE(preferences_.setTable(key, tableOf(0)));
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 4; ++writer) {
        threads.emplace_back([&, writer] {
            for (int count = 0; count < 20; ++count) {
                EXPECT_TRUE(preferences_.setTable(key, tableOf(writer)));
                EXPECT_TRUE(preferences_.setTable(std::to_string(writer), tableOf(count)));
                EXPECT_EQ(preferences_.table(std::to_string(writer)), tableOf(count));
                const std::optional<Table> common = preferences_.table(key);
                EXPECT_TRUE(common == tableOf(0) || common == tableOf(1) || common == tableOf(2) ||
                            common == tableOf(3));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(namesIn(folder_).size(), 5U) << "something unfinished was left";
}

/// The document in which earlier versions kept all tables.
class FormerPreferencesFile : public PreferenceFiles {
  protected:
    void putFormer(std::string_view contents) const {
        fs::create_directories(data_);
        writeFile(formerFile_, contents);
        ASSERT_EQ(chmod(formerFile_.c_str(), 0600), 0);
    }
};

TEST_F(FormerPreferencesFile, IsMigratedAndRemoved) {
    putFormer("{\"VornaRemoteConfigs\":{\"empty\":\"\",\"theme\":\"dark\",\"ğ\":\"\\\"1\\\"\\n\"}}\n");
    const Table table = {{"empty", ""}, {"theme", "dark"}, {"ğ", "\"1\"\n"}};
    EXPECT_EQ(preferences_.table(key), table);
    EXPECT_THAT(namesIn(data_), ElementsAre("preferences"));
    EXPECT_EQ(preferences_.table(key), table);
}

TEST_F(FormerPreferencesFile, IsMigratedWhenItIsReadEntryByEntryToo) {
    putFormer(R"({"VornaRemoteConfigs":{"theme":"dark"}})");
    EXPECT_EQ(entriesIn(preferences_, key), (Table{{"theme", "dark"}}));
    EXPECT_THAT(namesIn(data_), ElementsAre("preferences"));
}

TEST_F(FormerPreferencesFile, StaysIfItHasOtherEntriesButIsReadOnce) {
    const std::string document = R"({"VornaRemoteConfigs":{"theme":"dark"},"window":{"width":800}})"
                                 "\n";
    putFormer(document);
    EXPECT_EQ(preferences_.table(key), (Table{{"theme", "dark"}}));
    EXPECT_EQ(contentsOf(formerFile_), document);
    EXPECT_TRUE(preferences_.setTable(key, {{"theme", "light"}}));
    EXPECT_EQ(preferences_.table(key), (Table{{"theme", "light"}}));
    EXPECT_EQ(preferences_.table("window"), std::nullopt);
    EXPECT_EQ(contentsOf(formerFile_), document);
}

TEST_F(FormerPreferencesFile, IsIgnoredInFavourOfATableSavedSince) {
    putFormer(R"({"VornaRemoteConfigs":{"theme":"old"}})");
    ASSERT_TRUE(preferences_.setTable(key, {{"theme", "new"}}));
    EXPECT_EQ(preferences_.table(key), (Table{{"theme", "new"}}));
}

TEST_F(FormerPreferencesFile, GivesWayToATableThatIsSavedMeanwhile) {
    for (int round = 0; round < 50; ++round) {
        fs::remove_all(folder_);
        putFormer(R"({"VornaRemoteConfigs":{"theme":"old"}})");
        std::thread reader([this] { EXPECT_TRUE(preferences_.table(key)); });
        EXPECT_TRUE(preferences_.setTable(key, {{"theme", "new"}}));
        reader.join();
        ASSERT_EQ(preferences_.table(key), (Table{{"theme", "new"}})) << "in round " << round;
    }
}

TEST_F(FormerPreferencesFile, IsLeftAloneIfItHoldsNoTableOfTexts) {
    for (const char* const contents :
         {"", "{", "[]", "{}", R"({"VornaRemoteConfigs":null})", R"({"VornaRemoteConfigs":{"a":1}})",
          R"({"VornaRemoteConfigs":"a"})"}) {
        putFormer(contents);
        EXPECT_EQ(preferences_.table(key), std::nullopt) << contents;
        EXPECT_EQ(contentsOf(formerFile_), contents);
    }
    EXPECT_FALSE(fs::exists(folder_));
}

TEST_F(FormerPreferencesFile, MayBeALinkWhoseTargetStays) {
    const fs::path target = root_ / "dotfiles.json";
    writeFile(target, R"({"VornaRemoteConfigs":{"theme":"dark"}})");
    fs::create_directories(data_);
    fs::create_symlink(target, formerFile_);
    EXPECT_EQ(preferences_.table(key), (Table{{"theme", "dark"}}));
    EXPECT_FALSE(fs::is_symlink(formerFile_));
    EXPECT_TRUE(fs::exists(target));
}

TEST_F(FormerPreferencesFile, StaysIfTheTableCannotBeSaved) {
    putFormer(R"({"VornaRemoteConfigs":{"theme":"dark"}})");
    writeFile(data_ / "elsewhere", "");
    fs::create_directory_symlink("elsewhere", folder_);
    EXPECT_EQ(preferences_.table(key), std::nullopt) << "the folder is not absent";
    fs::remove(folder_);
    ASSERT_EQ(chmod(root_.c_str(), 0755), 0);
    ASSERT_EQ(chmod(data_.c_str(), 0555), 0);
    ASSERT_EQ(chmod(formerFile_.c_str(), 0644), 0);
    constexpr uid_t nobody = 65534;
    const bool isSuperuser = geteuid() == 0;
    if (isSuperuser) {
        ASSERT_EQ(seteuid(nobody), 0);
    }
    EXPECT_EQ(preferences_.table(key), (Table{{"theme", "dark"}}));
    EXPECT_TRUE(fs::exists(formerFile_));
    if (isSuperuser) {
        ASSERT_EQ(seteuid(0), 0);
    }
    ASSERT_EQ(chmod(data_.c_str(), 0700), 0);
}

TEST_F(FormerPreferencesFile, IsNotMigratedIfTheNewFileIsTemporarilyUnreadable) {
    putFormer(R"({"VornaRemoteConfigs":{"theme":"old"},"other":1})");
    ASSERT_TRUE(preferences_.setTable(key, {{"theme", "new"}}));
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &former), 0);
    const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(next, 0);
    close(next);
    bool isRead = false;
    for (rlim_t room = 0; !isRead && room < 10; ++room) {
        const rlimit small{static_cast<rlim_t>(next) + room, former.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &small), 0);
        const std::optional<Table> table = preferences_.table(key);
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &former), 0);
        isRead = table.has_value();
        EXPECT_TRUE(!table || table == (Table{{"theme", "new"}})) << room;
    }
    EXPECT_TRUE(isRead);
    EXPECT_EQ(preferences_.table(key), (Table{{"theme", "new"}}));
}

}  // namespace
}  // namespace vorna
