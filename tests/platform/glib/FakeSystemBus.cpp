// SPDX-License-Identifier: Apache-2.0
#include <tests/platform/glib/FakeSystemBus.h>

#include <gio/gio.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <future>
#include <stdexcept>

namespace vorna::tests {

namespace {

constexpr const char* socketPath = "/run/dbus/system_bus_socket";

std::string busConfiguration(const std::string& address) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>custom</type>
  <listen>)" +
           address + R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
  </policy>
</busconfig>
)";
}

int listeningSocket(const std::string& path) {
    const int made = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un place = {};
    place.sun_family = AF_UNIX;
    path.copy(place.sun_path, sizeof place.sun_path - 1);
    if (bind(made, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 || listen(made, 5) != 0) {
        throw std::runtime_error("cannot listen");
    }
    return made;
}

constexpr const char* interfaces = R"(
<node>
  <interface name="net.reactivated.Fprint.Manager">
    <method name="GetDevices"><arg type="ao" direction="out"/></method>
  </interface>
  <interface name="net.reactivated.Fprint.Device">
    <method name="ListEnrolledFingers">
      <arg type="s" direction="in"/><arg type="as" direction="out"/>
    </method>
  </interface>
</node>)";

constexpr const char* nonsenseInterfaces = R"(
<node>
  <interface name="net.reactivated.Fprint.Manager">
    <method name="GetDevices"><arg type="s" direction="out"/></method>
  </interface>
</node>)";

}  // namespace

FakeSystemBus::FakeSystemBus() {
    folder_.write("bus.conf", busConfiguration(address()));
    std::filesystem::create_directories(root() + "/run/dbus");
    daemon_.emplace(std::vector<std::string>{"dbus-daemon", "--nofork", "--nopidfile", "--print-address",
                                             "--config-file=" + root() + "/bus.conf"});
    // The address is printed once the daemon listens.
    if (!daemon_->waitForLine(address())) {
        throw std::runtime_error("the bus daemon does not start");
    }
}

MuteSystemBus::MuteSystemBus() {
    std::filesystem::create_directories(root() + "/run/dbus");
    socket_ = listeningSocket(root() + socketPath);
}

MuteSystemBus::~MuteSystemBus() {
    close(socket_);
}

bool MuteSystemBus::waitForClient() const {
    constexpr int bound = 30'000;
    pollfd waiting = {socket_, POLLIN, 0};
    if (poll(&waiting, 1, bound) != 1) {
        return false;
    }
    // The client stays connected until the process exits.
    waiting.fd = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    return waiting.fd >= 0 && poll(&waiting, 1, bound) == 1;
}

RudeBus::RudeBus(std::vector<std::string> lines)
    : lines_(std::move(lines)),
      socket_(listeningSocket(folder_.path() / "bus")),
      thread_([this] { serve(); }) {}

RudeBus::~RudeBus() {
    shutdown(socket_, SHUT_RDWR);
    thread_.join();
    close(socket_);
}

void RudeBus::serve() const {
    int client = -1;
    while ((client = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0) {
        std::array<char, 4096> heard{};
        for (const std::string& line : lines_) {
            if (recv(client, heard.data(), heard.size(), 0) <= 0 ||
                send(client, line.data(), line.size(), MSG_NOSIGNAL) < 0) {
                break;
            }
        }
        close(client);
    }
}

struct FakeFingerprintService::Server {
    explicit Server(Fingers itsFingers) : fingers(itsFingers) {}

    const Fingers fingers;
    std::string busAddress;
    GMainContext* context = g_main_context_new();
    GMainLoop* loop = g_main_loop_new(context, FALSE);
    GDBusConnection* connection = nullptr;
    std::thread thread;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::vector<std::string> calls;
    std::vector<GDBusMethodInvocation*> unanswered;

    void note(std::string call) {
        const std::scoped_lock lock(mutex);
        calls.push_back(std::move(call));
        changed.notify_all();
    }

    void answer(const char* path, const char* method, GVariant* arguments, GDBusMethodInvocation* call) {
        if (std::string_view(method) == "GetDevices") {
            note(method);
            switch (fingers) {
            case Fingers::hanging:
                unanswered.push_back(call);
                return;
            case Fingers::noReader:
                g_dbus_method_invocation_return_value(call, g_variant_new_parsed("(@ao [],)"));
                return;
            case Fingers::nonsense:
                g_dbus_method_invocation_return_value(call, g_variant_new("(s)", "readers"));
                return;
            default:
                g_dbus_method_invocation_return_value(
                    call, g_variant_new_parsed("([objectpath '/reader/0', '/reader/1'],)"));
                return;
            }
        }
        const char* user = nullptr;
        g_variant_get(arguments, "(&s)", &user);
        note(std::string(method) + " '" + user + "' at " + path);
        const bool isSecond = std::string_view(path) == "/reader/1";
        if (fingers == Fingers::enrolled || (fingers == Fingers::enrolledAtSecondReader && isSecond)) {
            g_dbus_method_invocation_return_value(
                call, g_variant_new_parsed("(['right-index-finger', 'left-thumb'],)"));
        } else if (fingers == Fingers::emptyList) {
            g_dbus_method_invocation_return_value(call, g_variant_new_parsed("(@as [],)"));
        } else if (fingers == Fingers::denied) {
            g_dbus_method_invocation_return_dbus_error(call, "net.reactivated.Fprint.Error.PermissionDenied",
                                                       "Not Authorized");
        } else {
            g_dbus_method_invocation_return_dbus_error(call, "net.reactivated.Fprint.Error.NoEnrolledPrints",
                                                       "Failed to discover prints");
        }
    }

    static void onCall(GDBusConnection* /*connection*/, const gchar* /*sender*/, const gchar* path,
                       const gchar* /*interface*/, const gchar* method, GVariant* arguments,
                       GDBusMethodInvocation* call, gpointer self) {
        static_cast<Server*>(self)->answer(path, method, arguments, call);
    }

    bool start() {
        connection = g_dbus_connection_new_for_address_sync(
            busAddress.c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        if (connection == nullptr) {
            return false;
        }
        GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(
            fingers == Fingers::nonsense ? nonsenseInterfaces : interfaces, nullptr);
        static const GDBusInterfaceVTable table = {onCall, nullptr, nullptr, {}};
        const auto publish = [&](const char* path, const char* interface) {
            GDBusInterfaceInfo* const info = g_dbus_node_info_lookup_interface(node, interface);
            if (info != nullptr) {
                g_dbus_connection_register_object(connection, path, info, &table, this, nullptr, nullptr);
            }
        };
        publish("/net/reactivated/Fprint/Manager", "net.reactivated.Fprint.Manager");
        publish("/reader/0", "net.reactivated.Fprint.Device");
        publish("/reader/1", "net.reactivated.Fprint.Device");
        g_dbus_node_info_unref(node);
        GVariant* const owned = g_dbus_connection_call_sync(
            connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
            "RequestName", g_variant_new("(su)", "net.reactivated.Fprint", 0U), nullptr,
            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        if (owned == nullptr) {
            return false;
        }
        g_variant_unref(owned);
        return true;
    }

    void serve(std::promise<bool>& started) {
        g_main_context_push_thread_default(context);
        const bool isStarted = start();
        started.set_value(isStarted);
        if (isStarted) {
            g_main_loop_run(loop);
        }
        for (GDBusMethodInvocation* const call : unanswered) {
            g_object_unref(call);
        }
        if (connection != nullptr) {
            g_dbus_connection_close_sync(connection, nullptr, nullptr);
            g_object_unref(connection);
        }
        g_main_context_pop_thread_default(context);
    }
};

FakeFingerprintService::FakeFingerprintService(const std::string& busAddress, Fingers fingers)
    : server_(std::make_unique<Server>(fingers)) {
    server_->busAddress = busAddress;
    std::promise<bool> started;
    server_->thread = std::thread([&] { server_->serve(started); });
    if (!started.get_future().get()) {
        server_->thread.join();
        throw std::runtime_error("the fingerprint service cannot be put on the bus");
    }
}

FakeFingerprintService::~FakeFingerprintService() {
    // From its own context, so that it cannot precede the loop.
    g_main_context_invoke(
        server_->context,
        [](gpointer loop) -> gboolean {
            g_main_loop_quit(static_cast<GMainLoop*>(loop));
            return G_SOURCE_REMOVE;
        },
        server_->loop);
    server_->thread.join();
    g_main_loop_unref(server_->loop);
    g_main_context_unref(server_->context);
}

std::vector<std::string> FakeFingerprintService::calls() const {
    const std::scoped_lock lock(server_->mutex);
    return server_->calls;
}

bool FakeFingerprintService::waitForCall() const {
    std::unique_lock lock(server_->mutex);
    return server_->changed.wait_for(lock, std::chrono::seconds(30), [&] { return !server_->calls.empty(); });
}

}  // namespace vorna::tests
