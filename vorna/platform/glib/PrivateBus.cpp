// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/PrivateBus.h>

#include <vorna/platform/Fork.h>
#include <vorna/platform/glib/GlibSockets.h>
#include <vorna/platform/glib/GlibThreads.h>

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vorna::glib {

namespace {

/// True if the entry names a socket and there is none, as in a container. GLib need not be set up to find
/// that out.
bool isMissing(std::string_view entry) {
    constexpr std::string_view prefix = "unix:path=";
    if (!entry.starts_with(prefix) || entry.find('%') != std::string_view::npos) {
        return false;
    }
    const std::string path(entry.substr(prefix.size(), entry.find(',') - prefix.size()));

    struct stat status {};

    return stat(path.c_str(), &status) != 0;
}

/// Returns the entries of an address that are worth trying: the local sockets. Those of other kinds start a
/// bus or another program, or wait for a network.
std::string localEntries(std::string_view address) {
    std::string kept;
    while (!address.empty()) {
        const std::size_t end = std::min(address.find(';'), address.size());
        const std::string_view entry = address.substr(0, end);
        address.remove_prefix(std::min(end + 1, address.size()));
        if (entry.starts_with("unix:") && !isMissing(entry)) {
            kept.append(kept.empty() ? "" : ";").append(entry);
        }
    }
    return kept;
}

/// GLib has one thread for all connections and starts it once. The child of a process that has reached a bus
/// is without it and would wait in vain.
bool isGlibsThreadHere() {
    static constinit std::atomic<std::int64_t> startedIn = -1;
    const std::int64_t here = forkGeneration();
    std::int64_t found = -1;
    return startedIn.compare_exchange_strong(found, here) || found == here;
}

}  // namespace

PrivateBus::ThreadContext::ThreadContext() {
    g_main_context_push_thread_default(context_.get());
}

PrivateBus::ThreadContext::~ThreadContext() {
    while (g_main_context_iteration(context_.get(), FALSE)) {
    }
    g_main_context_pop_thread_default(context_.get());
}

PrivateBus::PrivateBus(const std::string& address, const std::stop_token& stop, Time deadline)
    : deadline_(deadline),
      cancelOnStop_(stop, [this] { g_cancellable_cancel(cancellable_.get()); }) {
    if (const std::string entries = localEntries(address); !entries.empty() && isGlibsThreadHere()) {
        initialiseSockets();
        context_.emplace();
        if (startGlibThreads()) {
            connection_ = connectTo(entries);
        }
    }
}

Result<Object<GDBusConnection>, Error> PrivateBus::connectTo(const std::string& address) const {
    ErrorSlot error;
    const Object<GIOStream> stream(
        g_dbus_address_get_stream_sync(address.c_str(), nullptr, cancellable_.get(), error.out()));
    if (!stream) {
        return Unexpected(error.take());
    }
    if (G_IS_SOCKET_CONNECTION(stream.get())) {
        // GDBus sets no limit to the time that authentication takes.
        const auto left =
            std::chrono::ceil<std::chrono::seconds>(deadline_ - std::chrono::steady_clock::now());
        g_socket_set_timeout(g_socket_connection_get_socket(G_SOCKET_CONNECTION(stream.get())),
                             static_cast<guint>(std::max<std::int64_t>(left.count(), 1)));
    }
    // Unlike the process's shared connection, this one does not end the process when the bus goes away. GLib
    // aborts if a client passes a guid, such as the one in the address: the bus tells its own.
    Object<GDBusConnection> connection(g_dbus_connection_new_sync(
        stream.get(), nullptr,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable_.get(), error.out()));
    if (!connection) {
        return Unexpected(error.take());
    }
    return connection;
}

Variant PrivateBus::call(const char* destination, const char* path, const char* interface, const char* method,
                         GVariant* arguments, const char* resultType) const {
    const Variant ownedArguments(arguments == nullptr ? nullptr : g_variant_ref_sink(arguments));
    if (!connection_) {
        return nullptr;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline_ - std::chrono::steady_clock::now());
    const Variant reply(g_dbus_connection_call_sync(
        connection_->get(), destination, path, interface, method, arguments, G_VARIANT_TYPE(resultType),
        G_DBUS_CALL_FLAGS_NONE, static_cast<gint>(std::max<std::int64_t>(left.count(), 1)),
        cancellable_.get(), nullptr));
    return Variant(reply ? g_variant_get_child_value(reply.get(), 0) : nullptr);
}

}  // namespace vorna::glib
