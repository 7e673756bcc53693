// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/EventJournal.h>

#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>

namespace vorna::devserver {
namespace {

using support::contentsOf;
using support::TemporaryFolder;

TEST(EventJournal, AppendsOneLinePerDocument) {
    const TemporaryFolder folder;
    const auto path = folder.write("events.ndjson", "{\"old\":1}\n");
    EventJournal journal(path);
    EXPECT_TRUE(journal.append("{\"a\":1}"));
    EXPECT_TRUE(journal.append("{\"b\":2}"));
    EXPECT_EQ(contentsOf(path), "{\"old\":1}\n{\"a\":1}\n{\"b\":2}\n");
}

TEST(EventJournal, CreatesItsFileAndFolderImmediately) {
    const TemporaryFolder folder;
    const EventJournal journal(folder.path() / "a" / "b" / "events.ndjson");
    EXPECT_TRUE(std::filesystem::exists(journal.path()));
}

TEST(EventJournal, RecreatesAFileThatWasDeletedOrMoved) {
    const TemporaryFolder folder;
    EventJournal journal(folder.path() / "events.ndjson");
    EXPECT_TRUE(journal.append("1"));
    std::filesystem::rename(journal.path(), folder.path() / "kept");
    EXPECT_TRUE(journal.append("2"));
    EXPECT_EQ(contentsOf(journal.path()), "2\n");
    EXPECT_EQ(contentsOf(folder.path() / "kept"), "1\n");
    std::filesystem::remove(journal.path());
    EXPECT_TRUE(journal.append("3"));
    EXPECT_EQ(contentsOf(journal.path()), "3\n");
}

TEST(EventJournal, ThrowsImmediatelyIfItCannotWrite) {
    const TemporaryFolder folder;
    EXPECT_THROW(EventJournal(folder.path()), std::runtime_error);  // a folder
}

TEST(EventJournal, ReportsAFullDisk) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "this system has no /dev/full to stand for a full disk";
    }
    EventJournal journal("/dev/full");
    const auto appended = journal.append("{}");
    ASSERT_FALSE(appended);
    EXPECT_EQ(appended.error().reason, std::errc::no_space_on_device);
    EXPECT_THAT(describe(appended.error()), testing::HasSubstr("cannot write /dev/full"));
}

}  // namespace
}  // namespace vorna::devserver
