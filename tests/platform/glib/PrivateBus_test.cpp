// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/PrivateBus.h>

#include <tests/platform/glib/FakeSystemBus.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <stop_token>
#include <string>

namespace vorna {
namespace {

using glib::PrivateBus;
using tests::FakeSystemBus;
using tests::MuteSystemBus;
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
    const PrivateBus bus("no address at all", {}, soon());
    ASSERT_FALSE(bus.connection());
    ASSERT_NE(bus.connection().error().get(), nullptr);
    EXPECT_TRUE(g_error_matches(bus.connection().error().get(), G_IO_ERROR, G_IO_ERROR_INVALID_ARGUMENT));
}

TEST(PrivateBus, StartsNoProgram) {
    const support::TemporaryFolder folder;
    const std::string trace = folder.path() / "started";
    const PrivateBus bus("unix:path=/none/such;unixexec:path=/usr/bin/touch,argv1=" + trace, {}, soon());
    EXPECT_FALSE(bus.connection());
    EXPECT_FALSE(std::filesystem::exists(trace));
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
