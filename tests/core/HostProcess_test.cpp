// SPDX-License-Identifier: Apache-2.0
/// `Init` leaves the host's process unchanged, regardless of the machine's D-Bus services.

#include <vorna/core/VornaCoreSDK.h>

#include <tests/platform/glib/FakeSystemBus.h>
#include <tests/support/ForkedProcess.h>
#include <tests/support/KeyringSession.h>
#include <tests/support/ProcessVariables.h>
#include <tests/support/TemporaryFolder.h>

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>

namespace vorna {
namespace {

enum class Pipe : std::uint8_t { isDefault, isHandled, isIgnored };

void handlePipe(int /*signal*/) {}

/// libcurl wakes itself through a pair of sockets that programs started by the host do inherit.
bool isHalfOfAPair(int descriptor) {
    sockaddr_un peer = {};
    socklen_t size = sizeof peer;
    return getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
           peer.sun_family == AF_UNIX && size == sizeof peer.sun_family;
}

/// Everything that a host, and the programs it starts, could notice.
std::string describeProcess() {
    std::ostringstream text;
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) == 0) {
            text << "signal " << signal << ": " << reinterpret_cast<std::uintptr_t>(action.sa_handler) << ' '
                 << action.sa_flags << '\n';
        }
    }
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    for (int signal = 1; signal < NSIG; ++signal) {
        text << (sigismember(&blocked, signal) == 1 ? "blocked: " + std::to_string(signal) + '\n' : "");
    }
    for (char** entry = environ; *entry != nullptr; ++entry) {
        text << "variable " << *entry << '\n';
    }
    text << "locale " << std::setlocale(LC_ALL, nullptr) << '\n';  // NOLINT(concurrency-mt-unsafe)
    const mode_t mask = umask(0);
    umask(mask);
    text << "umask " << mask << '\n';
    text << "folder " << std::filesystem::current_path() << '\n';
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        if (const int flags = fcntl(descriptor, F_GETFD);
            flags >= 0 && (flags & FD_CLOEXEC) == 0 && !isHalfOfAPair(descriptor)) {
            text << "inherited descriptor " << descriptor << '\n';
        }
    }
    text << "main context " << g_main_context_pending(nullptr) << '\n';
    return text.str();
}

/// Runs in the host. The first line of the message is the data folder, then come the addresses of the
/// session's and the system's bus, if any.
int initialise(Pipe pipe, const std::string& message) {
    std::istringstream lines(message);
    std::string data;
    std::string sessionBus;
    std::string systemBus;
    std::getline(lines, data);
    std::getline(lines, sessionBus);
    std::getline(lines, systemBus);
    support::setVariable("HOME", data);
    support::unsetVariable("XDG_RUNTIME_DIR");
    support::setVariable("DBUS_SESSION_BUS_ADDRESS", sessionBus);
    support::setVariable("DBUS_SYSTEM_BUS_ADDRESS",
                         systemBus.empty() ? "unix:path=" + data + "/none" : systemBus);
    std::signal(SIGPIPE, pipe == Pipe::isDefault ? SIG_DFL : pipe == Pipe::isHandled ? handlePipe : SIG_IGN);

    const std::string before = describeProcess();
    PlatformOptions options;
    options.serviceURL = "http://127.0.0.1:1";
    options.dataDirectory = data + "/data";
    options.bundleIdentifier = "com.example.app";
    const Platform platform = makePlatform(options);
    VornaCoreSDK::UsePlatform(platform);
    VornaCoreSDK::Init("app");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!systemBus.empty() && !platform.system->facts()->isBiometricSupported) {
        if (std::chrono::steady_clock::now() > deadline) {
            std::cerr << "the fingerprint service was not asked\n";
            return 2;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (const std::string after = describeProcess(); after != before) {
        std::cerr << "--- before\n" << before << "--- after\n" << after;
        return 1;
    }
    return 0;
}

class HostProcess : public ::testing::TestWithParam<std::tuple<Pipe, bool, bool>> {};

TEST_P(HostProcess, IsUnchangedByInit) {
    const auto [pipe, hasSessionBus, hasSystemBus] = GetParam();
    if (!support::KeyringSession::isPossible()) {
        GTEST_SKIP() << "dbus-daemon, dbus-monitor or gnome-keyring-daemon is not installed";
    }
    const support::TemporaryFolder folder;
    support::ForkedProcess host(
        [pipe = pipe](const std::string& message) { return initialise(pipe, message); });
    std::optional<support::KeyringSession> session;
    std::optional<tests::FakeSystemBus> system;
    std::optional<tests::FakeFingerprintService> fingerprints;
    if (hasSessionBus) {
        session.emplace();
    }
    if (hasSystemBus) {
        system.emplace();
        fingerprints.emplace(system->address(), tests::Fingers::enrolled);
    }
    host.start(folder.path().string() + '\n' + (session ? session->busAddress() : "") + '\n' +
               (system ? system->address() : "") + '\n');
    EXPECT_EQ(host.wait(), 0);
    if (session) {
        EXPECT_EQ(session->itemCount("io.vorna.vornasdk", "userDetails"), 1U);
    }
}

std::string nameOf(const ::testing::TestParamInfo<std::tuple<Pipe, bool, bool>>& row) {
    const auto [pipe, hasSessionBus, hasSystemBus] = row.param;
    const std::string name = pipe == Pipe::isDefault   ? "DefaultSigpipe"
                             : pipe == Pipe::isHandled ? "HandledSigpipe"
                                                       : "IgnoredSigpipe";
    return name + (hasSessionBus ? "SessionBus" : "NoSessionBus") +
           (hasSystemBus ? "SystemBus" : "NoSystemBus");
}

INSTANTIATE_TEST_SUITE_P(With, HostProcess,
                         ::testing::Combine(::testing::Values(Pipe::isDefault, Pipe::isHandled,
                                                              Pipe::isIgnored),
                                            ::testing::Bool(), ::testing::Bool()),
                         nameOf);

}  // namespace
}  // namespace vorna
