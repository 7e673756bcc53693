// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A D-Bus daemon for one test, and a fingerprint service on it.

#include <tests/support/StartedProgram.h>
#include <tests/support/TemporaryFolder.h>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vorna::tests {

/// A real bus daemon, with its socket where the system bus has it under a root folder.
class FakeSystemBus {
  public:
    FakeSystemBus();
    FakeSystemBus(const FakeSystemBus&) = delete;
    FakeSystemBus& operator=(const FakeSystemBus&) = delete;
    FakeSystemBus(FakeSystemBus&&) = delete;
    FakeSystemBus& operator=(FakeSystemBus&&) = delete;
    ~FakeSystemBus() = default;

    std::string root() const { return folder_.path(); }

    std::string address() const { return "unix:path=" + root() + "/run/dbus/system_bus_socket"; }

    /// Kills the daemon early.
    void stop() { daemon_.reset(); }

  private:
    support::TemporaryFolder folder_;
    std::optional<support::StartedProgram> daemon_;
};

/// A socket in place of the system bus, which accepts connections and never answers.
class MuteSystemBus {
  public:
    MuteSystemBus();
    MuteSystemBus(const MuteSystemBus&) = delete;
    MuteSystemBus& operator=(const MuteSystemBus&) = delete;
    MuteSystemBus(MuteSystemBus&&) = delete;
    MuteSystemBus& operator=(MuteSystemBus&&) = delete;
    ~MuteSystemBus();

    std::string root() const { return folder_.path(); }

    std::string address() const { return "unix:path=" + root() + "/run/dbus/system_bus_socket"; }

    /// Waits until a client has connected and sent something.
    bool waitForClient() const;

  private:
    support::TemporaryFolder folder_;
    int socket_ = -1;
};

/// A socket in place of a bus, which says these lines, each once its client has said something, and then
/// hangs up. Serves on its own thread until it is destroyed.
class RudeBus {
  public:
    explicit RudeBus(std::vector<std::string> lines);
    RudeBus(const RudeBus&) = delete;
    RudeBus& operator=(const RudeBus&) = delete;
    RudeBus(RudeBus&&) = delete;
    RudeBus& operator=(RudeBus&&) = delete;
    ~RudeBus();

    std::string address() const { return "unix:path=" + (folder_.path() / "bus").string(); }

  private:
    void serve() const;

    support::TemporaryFolder folder_;
    const std::vector<std::string> lines_;
    int socket_ = -1;
    std::thread thread_;
};

/// How the fingerprint service answers.
enum class Fingers : std::uint8_t {
    enrolled,
    /// No finger at the first reader, one at the second.
    enrolledAtSecondReader,
    /// As an error, like fprintd's.
    none,
    /// As an empty list.
    emptyList,
    noReader,
    /// The call is never answered.
    hanging,
    denied,
    /// An answer of an undocumented type.
    nonsense
};

/// Serves on its own thread until it is destroyed.
class FakeFingerprintService {
  public:
    FakeFingerprintService(const std::string& busAddress, Fingers fingers);
    FakeFingerprintService(const FakeFingerprintService&) = delete;
    FakeFingerprintService& operator=(const FakeFingerprintService&) = delete;
    FakeFingerprintService(FakeFingerprintService&&) = delete;
    FakeFingerprintService& operator=(FakeFingerprintService&&) = delete;
    ~FakeFingerprintService();

    /// Returns the calls so far, such as "GetDevices" and "ListEnrolledFingers '' at /reader/0".
    std::vector<std::string> calls() const;

    /// Waits for the first call.
    bool waitForCall() const;

  private:
    struct Server;

    std::unique_ptr<Server> server_;
};

}  // namespace vorna::tests
