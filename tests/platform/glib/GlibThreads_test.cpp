// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/GlibThreads.h>

#include <vorna/platform/glib/Fingerprints.h>
#include <vorna/platform/glib/GlibSockets.h>
#include <vorna/platform/glib/SecretServiceCredentialStore.h>

#include <tests/platform/glib/FakeSystemBus.h>
#include <tests/support/KeyringSession.h>
#include <tests/support/TemporaryFolder.h>

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>

namespace vorna {
namespace {

/// The names of the threads that GLib keeps.
std::multiset<std::string> threadsOfGlib() {
    std::multiset<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "comm");
        std::string name;
        std::getline(file, name);
        if (name.starts_with("g") || name.starts_with("pool")) {
            names.insert(name);
        }
    }
    // The main thread has the program's name.
    names.erase("glib_tests");
    return names;
}

bool startOnThreadWithItsOwnContext() {
    bool isStarted = false;
    std::thread([&] {
        glib::initialiseSockets();
        GMainContext* const context = g_main_context_new();
        g_main_context_push_thread_default(context);
        isStarted = glib::startGlibThreads();
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    }).join();
    return isStarted;
}

TEST(GlibThreads, AreAllThatGlibNeedsForBothBuses) {
    if (!support::KeyringSession::isPossible()) {
        GTEST_SKIP() << "dbus-daemon, dbus-monitor or gnome-keyring-daemon is not installed";
    }
    ASSERT_EQ(threadsOfGlib(), std::multiset<std::string>());
    ASSERT_TRUE(startOnThreadWithItsOwnContext());
    const std::multiset<std::string> started = threadsOfGlib();
    EXPECT_TRUE(started.contains("gdbus"));

    // The test's own service would need such threads too, had they not been started.
    const support::KeyringSession session;
    SecretServiceCredentialStore store("com.example.app");
    EXPECT_TRUE(store.add("service", "account", "value"));
    EXPECT_EQ(store.read("service", "account"), "value");
    EXPECT_TRUE(store.remove("service", "account"));
    const tests::FakeSystemBus system;
    EXPECT_FALSE(isFingerEnrolled(system.address(), {}));
    EXPECT_EQ(threadsOfGlib(), started);
}

TEST(GlibThreads, LeaveTheHostsMainContextAlone) {
    ASSERT_TRUE(startOnThreadWithItsOwnContext());
    EXPECT_FALSE(g_main_context_iteration(nullptr, FALSE));
}

TEST(GlibThreads, AreStartedOnce) {
    ASSERT_TRUE(startOnThreadWithItsOwnContext());
    const std::multiset<std::string> started = threadsOfGlib();
    ASSERT_TRUE(startOnThreadWithItsOwnContext());
    EXPECT_EQ(threadsOfGlib(), started);
}

}  // namespace
}  // namespace vorna
