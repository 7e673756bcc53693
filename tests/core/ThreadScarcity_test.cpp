// SPDX-License-Identifier: Apache-2.0
/// A host that has few threads left lives on with the library. This file replaces pthread_create for the
/// whole program, so it is a separate program.

#include <vorna/core/VornaCoreSDK.h>

#include <tests/platform/glib/FakeSystemBus.h>
#include <tests/support/ForkedProcess.h>
#include <tests/support/KeyringSession.h>
#include <tests/support/ProcessVariables.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/ThreadLimit.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace vorna {
namespace {

/// Runs in the host. The lines of the message: the data folder, the buses of the session and of the system,
/// and how many threads the system grants.
int initialise(const std::string& message) {
    std::istringstream lines(message);
    std::string data;
    std::string sessionBus;
    std::string systemBus;
    std::string limit;
    std::getline(lines, data);
    std::getline(lines, sessionBus);
    std::getline(lines, systemBus);
    std::getline(lines, limit);
    support::setVariable("HOME", data);
    support::unsetVariable("XDG_RUNTIME_DIR");
    support::setVariable("DBUS_SESSION_BUS_ADDRESS", sessionBus);
    support::setVariable("DBUS_SYSTEM_BUS_ADDRESS", systemBus);
    PlatformOptions options;
    options.serviceURL = "http://127.0.0.1:1";
    options.dataDirectory = data + "/data";
    options.bundleIdentifier = "com.example.app";

    support::threadLimit = std::atoi(limit.c_str());
    const Platform platform = makePlatform(options);
    VornaCoreSDK::UsePlatform(platform);
    VornaCoreSDK::Init("app");
    VornaCoreSDK::Event("a");
    if (!VornaCoreSDK::GetUserID()) {
        return EXIT_FAILURE;
    }
    // Until the keyring and the fingerprint reader have been asked, or given up.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (!platform.system->facts()->isBiometricSupported && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    constexpr int isAsked = 10;
    constexpr int isNotAsked = 11;
    return platform.system->facts()->isBiometricSupported ? isAsked : isNotAsked;
}

TEST(HostWithFewThreads, LivesOnWhateverTheirNumber) {
    if (!support::KeyringSession::isPossible()) {
        GTEST_SKIP() << "dbus-daemon, dbus-monitor or gnome-keyring-daemon is not installed";
    }
    constexpr int most = 20;
    const support::TemporaryFolder folder;
    std::vector<std::unique_ptr<support::ForkedProcess>> hosts;
    for (int limit = 0; limit <= most; ++limit) {
        hosts.push_back(std::make_unique<support::ForkedProcess>(initialise));
    }
    const support::KeyringSession session;
    const tests::FakeSystemBus system;
    const tests::FakeFingerprintService fingerprints(system.address(), tests::Fingers::enrolled);
    int asked = 0;
    // The last first: it holds copies of the others' pipes.
    for (int limit = most; limit >= 0; --limit) {
        const std::string data = folder.path() / std::to_string(limit);
        support::ForkedProcess& host = *hosts[static_cast<std::size_t>(limit)];
        host.start(data + '\n' + session.busAddress() + '\n' + system.address() + '\n' +
                   std::to_string(limit) + '\n');
        const int outcome = host.wait();
        EXPECT_TRUE(outcome == 10 || outcome == 11) << limit << " threads: " << outcome;
        asked += outcome == 10 ? 1 : 0;
    }
    EXPECT_GT(asked, 0) << "none reached the bus";
    RecordProperty("hosts", most + 1);
    RecordProperty("reached_the_bus", asked);
}

}  // namespace
}  // namespace vorna
