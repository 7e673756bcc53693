// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Keeps GLib from changing how the host's process handles signals.

namespace vorna::glib {

/// Initialises GLib's sockets and keeps the host's handling of SIGPIPE, which GLib sets to "ignored" when a
/// process first uses a socket of its kind; programs that the host starts would inherit that.
///
/// A disposition that another thread sets during these microseconds may be lost. So `makePlatform` calls this
/// on the host's own thread, before any of our threads uses GLib. Any thread; later calls do nothing.
void initialiseSockets();

}  // namespace vorna::glib
