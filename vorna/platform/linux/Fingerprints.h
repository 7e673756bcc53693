// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Whether the user can be recognised by a fingerprint: the one kind of biometrics that Linux devices have a
/// common service for (fprintd, over the system's D-Bus).

#include <memory>
#include <string>

namespace vorna {

/// One question. It uses a connection of its own, which never ends the process when the bus goes away.
class FingerprintQuery {
  public:
    /// The address is one by which D-Bus names a bus, as in "unix:path=/run/dbus/system_bus_socket".
    explicit FingerprintQuery(std::string busAddress);
    FingerprintQuery(const FingerprintQuery&) = delete;
    FingerprintQuery& operator=(const FingerprintQuery&) = delete;
    FingerprintQuery(FingerprintQuery&&) = delete;
    FingerprintQuery& operator=(FingerprintQuery&&) = delete;
    ~FingerprintQuery();

    /// True when a reader knows a finger of the user who runs this process. False when not, and when the
    /// service is not there, refuses, or has not answered within about two seconds. Starts the service if
    /// need be. Blocks; asks once, on one thread.
    bool isFingerEnrolled() noexcept;

    /// Makes the question that is under way, or to come, return at once with false. Any thread.
    void cancel() noexcept;

  private:
    struct Cancellable;

    const std::string busAddress_;
    const std::unique_ptr<Cancellable> cancellable_;
};

}  // namespace vorna
