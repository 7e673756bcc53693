// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/GlibThreads.h>

#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/ServiceThread.h>
#include <vorna/platform/glib/GlibOwned.h>

#include <gio/gio.h>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace vorna::glib {

namespace {

/// More than GLib starts, for those that others start meanwhile.
constexpr std::size_t reserve = 8;

/// Waits until the kernel no longer counts the thread: it does so for a moment after the thread has been
/// joined.
void awaitRelease(pid_t thread) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
    while (syscall(SYS_tgkill, getpid(), thread, 0) == 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
}

/// Whether the reserve can be had at the same time. All of it is released again.
bool isReserveAvailable() {
    const auto ids = std::make_shared<std::array<std::atomic<pid_t>, reserve>>();
    std::vector<ServiceThread> threads;
    for (std::size_t index = 0; index < reserve; ++index) {
        std::optional<ServiceThread> thread = ServiceThread::start(
            "vorna-probe", ThreadPriority::normal, [ids, index](ServiceThread::Self& self) {
                (*ids)[index] = gettid();
                while (!self.stopRequested()) {
                    self.sleepFor(std::chrono::minutes(1));
                }
            });
        if (!thread) {
            break;
        }
        threads.push_back(*std::move(thread));
    }
    for (ServiceThread& thread : threads) {
        thread.requestStop();
    }
    for (std::size_t index = 0; index < threads.size(); ++index) {
        threads[index].join();
        if (const pid_t id = (*ids)[index]; id != 0) {
            awaitRelease(id);
        }
    }
    return threads.size() == reserve;
}

/// One end of a pair of sockets; null if the system refuses one.
Object<GSocketConnection> connectionOf(int socketNumber) {
    const Object<GSocket> socket(g_socket_new_from_fd(socketNumber, nullptr));
    if (!socket) {
        close(socketNumber);
        return nullptr;
    }
    return Object<GSocketConnection>(g_socket_connection_factory_create_connection(socket.get()));
}

/// A connection without authentication is one as soon as it is made, and its thread is running.
bool startThreads() {
    g_type_ensure(G_TYPE_TASK);
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()) != 0) {
        return false;
    }
    const Object<GSocketConnection> ours = connectionOf(pair[0]);
    const Object<GSocketConnection> other = connectionOf(pair[1]);
    if (!ours || !other) {
        return false;
    }
    const Object<GDBusConnection> connection(g_dbus_connection_new_sync(
        G_IO_STREAM(ours.get()), nullptr, G_DBUS_CONNECTION_FLAGS_NONE, nullptr, nullptr, nullptr));
    if (!connection) {
        return false;
    }
    g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
    return true;
}

struct Once {
    Mutex mutex;
    bool isDone = false;
};

}  // namespace

bool startGlibThreads() {
    static NeverDestroyed<Once> once;
    const std::scoped_lock lock(once->mutex);
    if (!once->isDone) {
        once->isDone = isReserveAvailable() && startThreads();
    }
    return once->isDone;
}

}  // namespace vorna::glib
