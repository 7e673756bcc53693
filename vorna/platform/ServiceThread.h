// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A background thread of the library: how it is started, told to stop, and waited for.
///
/// A host never notices these threads: they take no signals but those of faults, those that can wait run at
/// low priority, and when the process exits they come to rest before its statics are destroyed (see
/// ProcessExit.h). docs/architecture.md lists them all.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace vorna {

enum class ThreadPriority : std::uint8_t { normal, low };

/// Lowers the calling thread's priority to `ThreadPriority::low`, for good.
void lowerThreadPriority() noexcept;

/// The owner's handle. Any thread may use it, one at a time. Letting go of it requests a stop and waits for
/// nothing; the thread ends by itself.
class ServiceThread {
    class State;

  public:
    using Time = std::chrono::steady_clock::time_point;

    /// The thread as its own loop sees it.
    class Self {
      public:
        explicit Self(State& state) noexcept : state_(state) {}

        /// Requested by the owner, or because the process exits. Register a `std::stop_callback` to be woken.
        std::stop_token stopToken() const noexcept;

        bool stopRequested() const noexcept { return stopToken().stop_requested(); }

        /// Waits for the time to pass, or for a request to stop.
        void sleepFor(std::chrono::milliseconds time);

        /// Rests here until the process is gone: for a loop that finds the process exiting where it cannot
        /// return.
        [[noreturn]] void park();

        /// While one lives, the loop uses something that the exit of the process tears down, such as TLS, and
        /// is not waiting: exit then grants it more time.
        class Vital {
          public:
            explicit Vital(Self& self) noexcept;
            Vital(const Vital&) = delete;
            Vital& operator=(const Vital&) = delete;
            Vital(Vital&&) = delete;
            Vital& operator=(Vital&&) = delete;
            ~Vital();

          private:
            State& state_;
        };

      private:
        State& state_;
    };

    /// Runs until it returns. It must not throw.
    using Loop = std::function<void(Self& self)>;

    /// Starts a thread that shows the name (at most 15 characters) in debuggers. Absent when the system
    /// refuses another thread, and once the process exits.
    [[nodiscard]] static std::optional<ServiceThread> start(const char* name, ThreadPriority priority,
                                                            Loop loop);

    ServiceThread(const ServiceThread&) = delete;
    ServiceThread& operator=(const ServiceThread&) = delete;
    ServiceThread(ServiceThread&& other) noexcept;
    ServiceThread& operator=(ServiceThread&& other) noexcept;
    ~ServiceThread();

    /// Asks the loop to return. Stop callbacks run on the calling thread, before this returns.
    void requestStop() noexcept;

    /// Waits until the loop has returned or parked, at most until the deadline. False when it has not. True
    /// at once on the thread itself.
    bool awaitRest(Time deadline);

    /// Requests a stop and waits until the thread has ended; for an owner whose members the loop uses. Waits
    /// for nothing on the thread itself, and once the process exits, when waiting has had its turn.
    void join();

    bool isCurrent() const noexcept;

  private:
    explicit ServiceThread(std::shared_ptr<State> state) noexcept;

    std::shared_ptr<State> state_;
};

}  // namespace vorna
