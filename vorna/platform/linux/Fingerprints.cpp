// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/Fingerprints.h>

#include <gio/gio.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <string_view>
#include <utility>

namespace vorna {

namespace {

template <class Object>
struct Unreference {
    void operator()(Object* object) const noexcept { g_object_unref(object); }
};

template <>
struct Unreference<GVariant> {
    void operator()(GVariant* value) const noexcept { g_variant_unref(value); }
};

template <class Object>
using Reference = std::unique_ptr<Object, Unreference<Object>>;

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{2};

constexpr const char* service = "net.reactivated.Fprint";

/// Other kinds of addresses wait for networks, or start programs. Where there is no bus at all, as in a
/// container, nothing of GLib's need be set up to find that out.
bool mayBeReached(const std::string& address) {
    constexpr std::string_view onePlace = "unix:path=";
    if (address.starts_with(onePlace) && address.find_first_of("%;") == std::string::npos) {
        const std::string path = address.substr(onePlace.size(), address.find(',') - onePlace.size());
        return access(path.c_str(), F_OK) == 0;
    }
    return address.starts_with("unix:");
}

/// GLib has the whole process ignore SIGPIPE when it first uses a socket, and programs that the host starts
/// would inherit that. Neither GLib's sockets, which never raise the signal, nor our threads need it.
void useSocketsWithoutIgnoringSigpipe() {
    struct sigaction before = {};
    struct sigaction after = {};
    sigaction(SIGPIPE, nullptr, &before);
    g_type_class_unref(g_type_class_ref(G_TYPE_SOCKET));
    sigaction(SIGPIPE, nullptr, &after);
    if (after.sa_handler == SIG_IGN && before.sa_handler != SIG_IGN) {
        sigaction(SIGPIPE, &before, nullptr);
    }
}

/// Null when the bus does not answer at all, or not in time.
Reference<GDBusConnection> connectTo(const std::string& address, GCancellable* cancellable) {
    if (!mayBeReached(address)) {
        return nullptr;
    }
    useSocketsWithoutIgnoringSigpipe();
    gchar* guid = nullptr;
    const Reference<GIOStream> stream(
        g_dbus_address_get_stream_sync(address.c_str(), &guid, cancellable, nullptr));
    const std::unique_ptr<gchar, decltype(&g_free)> guidOwner(guid, g_free);
    if (!stream || !G_IS_SOCKET_CONNECTION(stream.get())) {
        return nullptr;
    }
    // GDBus has no bound of its own for the time that authentication takes.
    g_socket_set_timeout(g_socket_connection_get_socket(G_SOCKET_CONNECTION(stream.get())),
                         static_cast<guint>(patience.count()));
    constexpr auto flags = static_cast<GDBusConnectionFlags>(
        static_cast<unsigned>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT) |
        static_cast<unsigned>(G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION));
    Reference<GDBusConnection> connection(
        g_dbus_connection_new_sync(stream.get(), guid, flags, nullptr, cancellable, nullptr));
    if (connection) {
        g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    }
    return connection;
}

class Conversation {
  public:
    Conversation(GDBusConnection* connection, GCancellable* cancellable, Clock::time_point deadline)
        : connection_(connection),
          cancellable_(cancellable),
          deadline_(deadline) {}

    /// The method's single result; null when it fails. Takes over floating arguments.
    Reference<GVariant> call(const char* path, const char* interface, const char* method, GVariant* arguments,
                             const char* replyType) const {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - Clock::now()).count();
        const Reference<GVariant> reply(g_dbus_connection_call_sync(
            connection_, service, path, interface, method, arguments, G_VARIANT_TYPE(replyType),
            G_DBUS_CALL_FLAGS_NONE, static_cast<gint>(std::max<std::int64_t>(left, 1)), cancellable_,
            nullptr));
        return Reference<GVariant>(reply ? g_variant_get_child_value(reply.get(), 0) : nullptr);
    }

  private:
    GDBusConnection* connection_;
    GCancellable* cancellable_;
    Clock::time_point deadline_;
};

}  // namespace

struct FingerprintQuery::Cancellable {
    const Reference<GCancellable> object{g_cancellable_new()};
};

FingerprintQuery::FingerprintQuery(std::string busAddress)
    : busAddress_(std::move(busAddress)),
      cancellable_(std::make_unique<Cancellable>()) {}

FingerprintQuery::~FingerprintQuery() = default;

bool FingerprintQuery::isFingerEnrolled() noexcept {
    GCancellable* const cancellable = cancellable_->object.get();
    const Clock::time_point deadline = Clock::now() + patience;
    const Reference<GDBusConnection> connection = connectTo(busAddress_, cancellable);
    if (!connection) {
        return false;
    }
    const Conversation conversation(connection.get(), cancellable, deadline);
    const Reference<GVariant> readers = conversation.call(
        "/net/reactivated/Fprint/Manager", "net.reactivated.Fprint.Manager", "GetDevices", nullptr, "(ao)");
    bool isEnrolled = false;
    const gsize readerCount = readers ? g_variant_n_children(readers.get()) : 0;
    for (gsize index = 0; index < readerCount && !isEnrolled; ++index) {
        const Reference<GVariant> reader(g_variant_get_child_value(readers.get(), index));
        // An empty name stands for the user who asks.
        const Reference<GVariant> fingers =
            conversation.call(g_variant_get_string(reader.get(), nullptr), "net.reactivated.Fprint.Device",
                              "ListEnrolledFingers", g_variant_new("(s)", ""), "(as)");
        isEnrolled = fingers && g_variant_n_children(fingers.get()) > 0;
    }
    return isEnrolled;
}

void FingerprintQuery::cancel() noexcept {
    g_cancellable_cancel(cancellable_->object.get());
}

}  // namespace vorna
