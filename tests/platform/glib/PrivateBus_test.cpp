// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/PrivateBus.h>

#include <tests/platform/glib/FakeSystemBus.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <stop_token>
#include <string>
#include <vector>

namespace vorna {
namespace {

using glib::PrivateBus;
using tests::FakeSystemBus;
using tests::MuteSystemBus;
using tests::RudeBus;
using Clock = std::chrono::steady_clock;

Clock::time_point soon(std::chrono::milliseconds time = std::chrono::seconds(20)) {
    return Clock::now() + time;
}

glib::Variant idOf(const PrivateBus& bus) {
    return bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", nullptr,
                    "(s)");
}

TEST(PrivateBus, CallsMethods) {
    const FakeSystemBus daemon;
    const PrivateBus bus(daemon.address(), {}, soon());
    ASSERT_TRUE(bus.connection());
    const glib::Variant id = idOf(bus);
    ASSERT_TRUE(id);
    EXPECT_EQ(std::string(g_variant_get_string(id.get(), nullptr)).size(), 32U);
}

TEST(PrivateBus, IsNotASharedConnection) {
    const FakeSystemBus daemon;
    const PrivateBus one(daemon.address(), {}, soon());
    const PrivateBus two(daemon.address(), {}, soon());
    ASSERT_TRUE(one.connection() && two.connection());
    EXPECT_STRNE(g_dbus_connection_get_unique_name(one.connection()->get()),
                 g_dbus_connection_get_unique_name(two.connection()->get()));
    EXPECT_FALSE(g_dbus_connection_get_exit_on_close(one.connection()->get()));
}

TEST(PrivateBus, LeavesTheHostsMainContextAlone) {
    FakeSystemBus daemon;
    {
        const PrivateBus bus(daemon.address(), {}, soon());
        ASSERT_TRUE(idOf(bus));
        daemon.stop();
        // GIO announces the end of the connection in the main context in which it was made.
        while (!g_dbus_connection_is_closed(bus.connection()->get())) {
            g_usleep(1000);
        }
    }
    EXPECT_FALSE(g_main_context_iteration(nullptr, FALSE));
    EXPECT_EQ(g_main_context_get_thread_default(), nullptr);
}

TEST(PrivateBus, IsNotConnectedIfTheSocketIsMissing) {
    const support::TemporaryFolder folder;
    const PrivateBus bus("unix:path=" + (folder.path() / "none").string(), {}, soon());
    ASSERT_FALSE(bus.connection());
    EXPECT_EQ(bus.connection().error().get(), nullptr);
    EXPECT_EQ(idOf(bus), nullptr);
    EXPECT_EQ(g_type_class_peek(G_TYPE_SOCKET), nullptr) << "GLib was set up for nothing";
}

TEST(PrivateBus, ReportsWhyItIsNotConnected) {
    const PrivateBus bus("unix:color=red", {}, soon());
    ASSERT_FALSE(bus.connection());
    ASSERT_NE(bus.connection().error().get(), nullptr);
    EXPECT_TRUE(g_error_matches(bus.connection().error().get(), G_IO_ERROR, G_IO_ERROR_INVALID_ARGUMENT));
}

TEST(PrivateBus, StartsNoProgram) {
    const support::TemporaryFolder folder;
    const std::string trace = folder.path() / "started";
    const PrivateBus bus("unix:path=/none/such;unix:abstract=/none/such;unixexec:path=/usr/bin/touch,argv1=" +
                             trace,
                         {}, soon());
    EXPECT_FALSE(bus.connection());
    EXPECT_FALSE(std::filesystem::exists(trace));
}

TEST(PrivateBus, ConnectsToAnAddressWithTheBussOwnGuid) {
    const FakeSystemBus daemon;
    std::string guid;
    {
        const PrivateBus bus(daemon.address(), {}, soon());
        const glib::Variant id = idOf(bus);
        ASSERT_TRUE(id);
        guid = g_variant_get_string(id.get(), nullptr);
    }
    const PrivateBus bus(daemon.address() + ",guid=" + guid, {}, soon());
    EXPECT_TRUE(idOf(bus));
}

TEST(PrivateBus, ConnectsToAnAddressWithTheGuidOfAnEarlierBus) {
    const FakeSystemBus daemon;
    const PrivateBus bus(daemon.address() + ",guid=0123456789abcdef0123456789abcdef", {}, soon());
    EXPECT_TRUE(idOf(bus));
}

TEST(PrivateBus, ConnectsToTheOneOfSeveralAddressesThatAnswers) {
    const FakeSystemBus daemon;
    const support::TemporaryFolder folder;
    const PrivateBus bus("unixexec:path=/bin/false;unix:path=" + (folder.path() / "none").string() +
                             ";tcp:host=127.0.0.1,port=1;;nonsense;unix:abstract=/vorna/none;" +
                             daemon.address() + ";autolaunch:",
                         {}, soon());
    EXPECT_TRUE(idOf(bus));
}

TEST(PrivateBus, IsNotConnectedToAnythingButALocalSocket) {
    for (const char* const address :
         {"", ";", ";;;", "nonsense", "unix", ":", "=", "unixexec:path=/bin/true",
          "autolaunch:", "autolaunch:guid=0123456789abcdef0123456789abcdef", "tcp:host=127.0.0.1,port=1",
          "nonce-tcp:host=127.0.0.1,port=1,noncefile=/dev/zero", "launchd:env=X", "\xFF\xFE"}) {
        const PrivateBus bus(address, {}, soon());
        ASSERT_FALSE(bus.connection()) << address;
        EXPECT_EQ(bus.connection().error().get(), nullptr) << address;
    }
}

TEST(PrivateBus, IsNotConnectedToAnAddressThatCannotBeRead) {
    for (const char* const address :
         {"unix:", "unix:path", "unix:path=", "unix:path=%zz", "unix:path=%", "unix:path=/none,path=/none",
          "unix:path=%2Fnone,abstract=none", "unix:guid=1", "unix:dir=/tmp", "unix:tmpdir=/tmp",
          "unix:runtime=yes", "unix:path=%00", "unix:abstract=\xFF"}) {
        const PrivateBus bus(address, {}, soon());
        EXPECT_FALSE(bus.connection()) << address;
    }
}

TEST(PrivateBus, IsNotConnectedToABusThatHangsUpOrTalksNonsense) {
    const std::string ok = "OK 0123456789abcdef0123456789abcdef\r\n";
    const std::string rejected = "REJECTED EXTERNAL\r\n";
    for (const std::vector<std::string>& lines : std::vector<std::vector<std::string>>{
             {},
             {""},
             {"\r\n"},
             {"REJECTED\r\n"},
             {"REJECTED ANONYMOUS DBUS_COOKIE_SHA1\r\n", "REJECTED\r\n"},
             {rejected},
             {rejected, rejected},
             {rejected, "OK\r\n"},
             {rejected, "OK not-hexadecimal\r\n"},
             {rejected, "DATA\r\n"},
             {rejected, ok},
             {rejected, ok, "ERROR\r\n"},
             {rejected, ok, "AGREE_UNIX_FD\r\n"},
             {rejected, ok, "AGREE_UNIX_FD\r\n", std::string(64, '\0')},
             {rejected, ok, "AGREE_UNIX_FD\r\n", std::string(100'000, 'l')},
             {std::string(1'000'000, 'A')},
             {std::string("\xFF\xFE\0\r\n", 5)},
         }) {
        const RudeBus daemon(lines);
        const PrivateBus bus(daemon.address(), {}, soon());
        EXPECT_FALSE(bus.connection()) << ::testing::PrintToString(lines).substr(0, 200);
    }
}

TEST(PrivateBus, GivesUpOnASilentBusAtTheDeadline) {
    const MuteSystemBus daemon;
    const auto began = Clock::now();
    const PrivateBus bus(daemon.address(), {}, soon(std::chrono::milliseconds(1000)));
    EXPECT_FALSE(bus.connection());
    EXPECT_LT(Clock::now() - began, std::chrono::seconds(10));
}

TEST(PrivateBus, DoesNotConnectOnceAStopIsRequested) {
    const FakeSystemBus daemon;
    std::stop_source stop;
    stop.request_stop();
    const PrivateBus bus(daemon.address(), stop.get_token(), soon());
    ASSERT_FALSE(bus.connection());
    EXPECT_TRUE(g_error_matches(bus.connection().error().get(), G_IO_ERROR, G_IO_ERROR_CANCELLED));
}

TEST(PrivateBus, MakesNoCallOnceAStopIsRequested) {
    const FakeSystemBus daemon;
    std::stop_source stop;
    const PrivateBus bus(daemon.address(), stop.get_token(), soon());
    ASSERT_TRUE(idOf(bus));
    stop.request_stop();
    EXPECT_FALSE(idOf(bus));
}

}  // namespace
}  // namespace vorna
