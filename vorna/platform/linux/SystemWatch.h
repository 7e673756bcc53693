// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The background thread that reads the facts that are slow to read, and keeps them current: the battery, the
/// screen and the fingerprint reader; and the system's time zone, the device's name and the system's version.

#include <vorna/platform/linux/FactsBoard.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

namespace vorna {

/// Tells whether a finger of the user is enrolled, asking the service on the system bus of that address. May
/// block until a stop is requested.
using FingerprintQuery =
    std::function<bool(const std::string& systemBusAddress, const std::stop_token& stop)>;

struct SystemWatchSources {
    /// The folder that contains /sys; "" on a real system.
    std::string root;
    std::string systemBusAddress;
    /// Called once, on the thread. If empty, biometrics count as unsupported.
    FingerprintQuery isFingerEnrolled;
    /// How often the sources are read again.
    std::chrono::milliseconds interval;
};

class SystemWatch {
  public:
    /// Starts the thread. If the system refuses one, the facts stay unknown until the library's next
    /// operation, which tries again.
    SystemWatch(std::shared_ptr<FactsBoard> board, SystemWatchSources sources);
    SystemWatch(const SystemWatch&) = delete;
    SystemWatch& operator=(const SystemWatch&) = delete;
    SystemWatch(SystemWatch&&) = delete;
    SystemWatch& operator=(SystemWatch&&) = delete;
    /// Stops the thread and waits for it, except while the process exits; the thread owns all that it uses.
    ~SystemWatch();

  private:
    class Life;

    const std::shared_ptr<Life> life_;
};

}  // namespace vorna
