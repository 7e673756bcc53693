// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Connections to D-Bus that leave the host's process as it was: no shared connection, no use of the host's
/// main context, no change to its handling of SIGPIPE, no bus started.

#include <vorna/base/Result.h>
#include <vorna/platform/glib/GlibOwned.h>

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace vorna::glib {

/// One conversation with a message bus, on one of our threads, from connecting to disconnecting. While it is
/// connected, the thread has its own main context.
class PrivateBus {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Connects to the first of the address's local sockets that answers; entries that would start a bus or
    /// another program, or need a network, are not tried. Calls, and connecting to a bus that accepts but
    /// does not answer, fail at the deadline; all fail immediately when a stop is requested.
    /// In the child of a process that has reached a bus, none is.
    PrivateBus(const std::string& address, const std::stop_token& stop, Time deadline);
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    PrivateBus(PrivateBus&&) = delete;
    PrivateBus& operator=(PrivateBus&&) = delete;
    /// Must run on the same thread, after everything that uses the connection.
    ~PrivateBus() = default;

    /// The error is null if no connection was attempted: for want of an entry worth trying, or of threads.
    const Result<Object<GDBusConnection>, Error>& connection() const noexcept { return connection_; }

    /// Cancelled when a stop is requested.
    GCancellable* cancellable() const noexcept { return cancellable_.get(); }

    /// Calls the method and returns its only result, which must have the given type; null if the call fails.
    /// Takes over floating arguments. Starts the service if necessary.
    Variant call(const char* destination, const char* path, const char* interface, const char* method,
                 GVariant* arguments, const char* resultType) const;

  private:
    /// Makes a new context the thread's default one; on destruction, releases everything that GIO has queued
    /// in it.
    class ThreadContext {
      public:
        ThreadContext();
        ThreadContext(const ThreadContext&) = delete;
        ThreadContext& operator=(const ThreadContext&) = delete;
        ThreadContext(ThreadContext&&) = delete;
        ThreadContext& operator=(ThreadContext&&) = delete;
        ~ThreadContext();

      private:
        const Owned<GMainContext, g_main_context_unref> context_{g_main_context_new()};
    };

    Result<Object<GDBusConnection>, Error> connectTo(const std::string& address) const;

    std::optional<ThreadContext> context_;
    const Object<GCancellable> cancellable_{g_cancellable_new()};
    const Time deadline_;
    const std::stop_callback<std::function<void()>> cancelOnStop_;
    Result<Object<GDBusConnection>, Error> connection_ = Unexpected(Error());
};

}  // namespace vorna::glib
