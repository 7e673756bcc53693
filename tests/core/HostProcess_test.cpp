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
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cfenv>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstddef>
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

int parentDeathSignal() {
    int number = 0;
    prctl(PR_GET_PDEATHSIG, &number);
    return number;
}

/// Everything that a host, and the programs it starts, could notice.
std::string describeProcess() {
    std::ostringstream text;
    siginfo_t child = {};
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) == 0) {
            text << "signal " << signal << ": " << reinterpret_cast<std::uintptr_t>(action.sa_handler) << ' '
                 << action.sa_flags;
            for (int other = 1; other < NSIG; ++other) {
                text << (sigismember(&action.sa_mask, other) == 1 ? " blocks " + std::to_string(other) : "");
            }
            text << '\n';
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
    for (int resource = 0; resource < RLIM_NLIMITS; ++resource) {
        rlimit limit = {};
        getrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
        text << "limit " << resource << ": " << limit.rlim_cur << ' ' << limit.rlim_max << '\n';
    }
    for (const auto timer : {ITIMER_REAL, ITIMER_VIRTUAL, ITIMER_PROF}) {
        itimerval value = {};
        getitimer(timer, &value);
        text << "timer " << timer << ": " << value.it_value.tv_sec << ' ' << value.it_interval.tv_sec << '\n';
    }
    std::array<char, 16> name{};
    prctl(PR_GET_NAME, name.data());
    text << "thread " << name.data() << ", priority " << getpriority(PRIO_PROCESS, 0) << ", policy "
         << sched_getscheduler(0) << '\n';
    stack_t signalStack = {};
    sigaltstack(nullptr, &signalStack);
    text << "signal stack " << signalStack.ss_sp << '\n';
    text << "rounding " << std::fegetround() << '\n';
    text << "dumpable " << prctl(PR_GET_DUMPABLE) << ", death signal " << parentDeathSignal() << '\n';
    text << "children " << (waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0) << '\n';
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        if (const int flags = fcntl(descriptor, F_GETFD); flags >= 0 && (flags & FD_CLOEXEC) == 0) {
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
    VornaCoreSDK::Event("a", "1");
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

/// Runs in the host: initialises with these addresses of its buses, of which the system's is reached or not.
int survive(const std::string& message) {
    std::istringstream lines(message);
    std::string data;
    std::string sessionBus;
    std::string systemBus;
    std::string isReached;
    std::getline(lines, data);
    std::getline(lines, sessionBus);
    std::getline(lines, systemBus);
    std::getline(lines, isReached);
    support::setVariable("HOME", data);
    support::unsetVariable("XDG_RUNTIME_DIR");
    support::setVariable("DBUS_SESSION_BUS_ADDRESS", sessionBus);
    support::setVariable("DBUS_SYSTEM_BUS_ADDRESS", systemBus);
    PlatformOptions options;
    options.serviceURL = "http://127.0.0.1:1";
    options.dataDirectory = data + "/data";
    options.bundleIdentifier = "com.example.app";
    const Platform platform = makePlatform(options);
    VornaCoreSDK::UsePlatform(platform);
    VornaCoreSDK::Init("app");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (isReached == "1" && !platform.system->facts()->isBiometricSupported) {
        if (std::chrono::steady_clock::now() > deadline) {
            std::cerr << "the fingerprint service was not asked\n";
            return 2;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return VornaCoreSDK::GetUserID() ? 0 : 1;
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

/// A form of a bus's address, written with @ for the address that works.
struct AddressForm {
    const char* name;
    const char* form;
    bool isReached;
};

class HostWithBusAddress : public ::testing::TestWithParam<AddressForm> {};

TEST_P(HostWithBusAddress, SurvivesInit) {
    if (!support::KeyringSession::isPossible()) {
        GTEST_SKIP() << "dbus-daemon, dbus-monitor or gnome-keyring-daemon is not installed";
    }
    const support::TemporaryFolder folder;
    support::ForkedProcess host(survive);
    const auto written = [form = std::string(GetParam().form)](const std::string& address) {
        const std::size_t at = form.find('@');
        return at == std::string::npos ? form : std::string(form).replace(at, 1, address);
    };
    const support::KeyringSession session;
    const tests::FakeSystemBus system;
    const tests::FakeFingerprintService fingerprints(system.address(), tests::Fingers::enrolled);
    host.start(folder.path().string() + '\n' + written(session.busAddress()) + '\n' +
               written(system.address()) + '\n' + (GetParam().isReached ? "1" : "0") + '\n');
    EXPECT_EQ(host.wait(), 0);
    EXPECT_EQ(session.itemCount("io.vorna.vornasdk", "userDetails"), GetParam().isReached ? 1U : 0U);
    EXPECT_EQ(fingerprints.calls().empty(), !GetParam().isReached);
}

INSTANTIATE_TEST_SUITE_P(
    Of, HostWithBusAddress,
    ::testing::Values(AddressForm{"ItsPlainForm", "@", true},
                      AddressForm{"AGuid", "@,guid=0123456789abcdef0123456789abcdef", true},
                      AddressForm{"SeveralEntries",
                                  "tcp:host=127.0.0.1,port=1;unix:path=/none;unix:abstract=/none;@", true},
                      AddressForm{"AnEmptyEntry", ";;@;;", true}, AddressForm{"Nonsense", "nonsense", false},
                      AddressForm{"ABadEscape", "unix:path=%zz", false},
                      AddressForm{"AProgram", "unixexec:path=/bin/false", false},
                      AddressForm{"ANetwork", "tcp:host=192.0.2.1,port=1", false},
                      AddressForm{"AFileThatIsNoSocket", "unix:path=/etc/passwd", false}),
    [](const auto& row) { return row.param.name; });

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
