// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The one kind of background thread in the library: how it is started, stopped and waited for.
///
/// A host never notices these threads: they block all signals except faults, run at low priority where they
/// can wait, and rest before the host's statics are destroyed when the process exits (see ProcessExit.h). The
/// child of a fork has none of them: there, handles count as those of threads that have ended.
/// docs/architecture.md lists them all.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace vorna {

enum class ThreadPriority : std::uint8_t { normal, low };

/// Lowers the calling thread to `ThreadPriority::low`. Irreversible without privileges.
void lowerThreadPriority() noexcept;

/// The owner's handle. Any thread may use it, but only one at a time.
class ServiceThread {
    class State;

  public:
    using Time = std::chrono::steady_clock::time_point;

    /// The thread as its own loop sees it.
    class Self {
      public:
        explicit Self(State& state) noexcept : state_(state) {}

        /// Stopped by the owner, or when the process exits. A `std::stop_callback` can interrupt a wait.
        std::stop_token stopToken() const noexcept;

        /// Also true if host code that ran on this thread has forked and come back in the child.
        bool stopRequested() const noexcept;

        /// False once the process exits and no longer waits for this thread: it must then only park. Until
        /// then a thread with a grace may finish what is under way, although a stop has been requested. To
        /// use something torn down at exit, check this in a `Vital` scope.
        bool mayGoOn() const noexcept;

        /// When the grace is over; `Time::max()` while the process is not exiting.
        Time endOfGrace() const noexcept;

        /// Sleeps until the time is up or a stop is requested.
        void sleepFor(std::chrono::milliseconds time);

        /// Rests here until the process is gone: for a loop that finds the process exiting at a point where
        /// it cannot return.
        [[noreturn]] void park();

        /// Marks work that uses something torn down at process exit, such as TLS, and that never waits:
        /// process exit then grants the thread more time.
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

    /// Runs once, until it returns. An exception that leaves it ends the thread, with a log line.
    using Loop = std::function<void(Self& self)>;

    /// Starts a thread that debuggers show under the name (at most 15 characters). When the process exits, it
    /// may go on with what is under way for the grace. std::nullopt if the system refuses another thread or
    /// the process is exiting.
    [[nodiscard]] static std::optional<ServiceThread>
    start(const char* name, ThreadPriority priority, Loop loop,
          std::chrono::milliseconds exitGrace = std::chrono::milliseconds(0));

    ServiceThread(const ServiceThread&) = delete;
    ServiceThread& operator=(const ServiceThread&) = delete;
    /// The moved-from handle may only be assigned to or destroyed.
    ServiceThread(ServiceThread&& other) noexcept = default;
    /// Releases the thread that this handle had, as the destructor does.
    ServiceThread& operator=(ServiceThread&& other) noexcept;
    /// Requests a stop and returns without waiting; the thread ends in its own time.
    ~ServiceThread();

    /// Asks the loop to return. Stop callbacks run on the calling thread, before this returns.
    void requestStop() noexcept;

    /// Waits until the loop has returned or parked. False if it has not by the deadline. Returns true
    /// immediately on the thread itself.
    bool awaitRest(Time deadline);

    /// Requests a stop and waits until the thread has ended. Returns immediately on the thread itself and
    /// while the process exits, so the loop must share ownership of everything it uses.
    void join();

    bool isCurrent() const noexcept;

    /// Whether the loop has returned, or has been ended by host code that called `pthread_exit` in it.
    bool hasEnded() const;

  private:
    explicit ServiceThread(std::shared_ptr<State> state) noexcept;

    std::shared_ptr<State> state_;
};

}  // namespace vorna
