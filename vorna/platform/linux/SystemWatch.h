// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The background thread that learns what takes time to learn, and keeps it current: the battery, the screen,
/// the fingerprint reader and the system's time zone.

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
    /// The folder under which /sys is found; "" on a living system.
    std::string root;
    std::string systemBusAddress;
    /// Called once, on the thread; without one biometrics are not supported.
    FingerprintQuery isFingerEnrolled;
    /// How often to look without having been told of a change.
    std::chrono::milliseconds interval;
};

/// Lives as long as its thread is wanted. Comes to rest by itself when the process exits.
class SystemWatch {
  public:
    /// Starts the thread; where the system refuses one, the facts just stay unknown.
    SystemWatch(std::shared_ptr<FactsBoard> board, SystemWatchSources sources);
    SystemWatch(const SystemWatch&) = delete;
    SystemWatch& operator=(const SystemWatch&) = delete;
    SystemWatch(SystemWatch&&) = delete;
    SystemWatch& operator=(SystemWatch&&) = delete;
    /// Stops the thread and waits for it. A thread that has not come to rest by the time the process exits
    /// is left alone; it shares ownership of all that it uses.
    ~SystemWatch();

    /// From now on the battery is kept current. Any thread; returns at once.
    void watchBattery() noexcept;

  private:
    struct State;

    static void run(State& state) noexcept;

    const std::shared_ptr<State> state_;
};

}  // namespace vorna
