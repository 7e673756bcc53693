// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/GlibSockets.h>

#include <gio/gio.h>

#include <csignal>
#include <mutex>

namespace vorna::glib {

void initialiseSockets() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (g_type_class_peek(G_TYPE_SOCKET) != nullptr) {
            // The host has used GIO before us, so the disposition is its own affair.
            return;
        }
        struct sigaction before = {};
        struct sigaction after = {};
        sigaction(SIGPIPE, nullptr, &before);
        // GIO sets the signal in the initialiser of this class and nowhere else. It does not rely on it: it
        // sends with MSG_NOSIGNAL.
        g_type_class_ref(G_TYPE_SOCKET);
        sigaction(SIGPIPE, nullptr, &after);
        if (after.sa_handler == SIG_IGN && before.sa_handler != SIG_IGN) {
            sigaction(SIGPIPE, &before, nullptr);
        }
    });
}

}  // namespace vorna::glib
