// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A D-Bus of the test's own, and a fingerprint service on it.

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

/// A real bus daemon, at the place where a system's bus is found under its root folder.
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

    /// Ends the daemon before its time.
    void stop() { daemon_.reset(); }

  private:
    support::TemporaryFolder folder_;
    std::optional<support::StartedProgram> daemon_;
};

/// A socket at the place of the system's bus, which accepts connections and never says a word.
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

    /// Waits until somebody has connected and sent something.
    bool waitForGuest() const;

  private:
    support::TemporaryFolder folder_;
    int socket_ = -1;
};

/// What the fingerprint service has to tell.
enum class Fingers : std::uint8_t {
    enrolled,
    /// The first reader knows none, the second one does.
    enrolledAtSecondReader,
    /// As fprintd says it: an error.
    none,
    /// As an empty list.
    emptyList,
    noReader,
    /// A question that is never answered.
    hanging,
    denied,
    /// An answer of another type than the documented one.
    nonsense
};

/// Serves on a thread of its own as long as it lives.
class FakeFingerprintService {
  public:
    FakeFingerprintService(const std::string& busAddress, Fingers fingers);
    FakeFingerprintService(const FakeFingerprintService&) = delete;
    FakeFingerprintService& operator=(const FakeFingerprintService&) = delete;
    FakeFingerprintService(FakeFingerprintService&&) = delete;
    FakeFingerprintService& operator=(FakeFingerprintService&&) = delete;
    ~FakeFingerprintService();

    /// The calls so far, as in "GetDevices" and "ListEnrolledFingers '' at /reader/0".
    std::vector<std::string> calls() const;

    /// Waits until it has been asked anything.
    bool waitForCall() const;

  private:
    struct Server;

    std::unique_ptr<Server> server_;
};

}  // namespace vorna::tests
