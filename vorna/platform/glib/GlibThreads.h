// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The threads without which GLib cannot use a bus.

namespace vorna::glib {

/// Makes GLib start the threads that it keeps for all of the process's life: "gdbus", by which all
/// connections are served, and the spawner of its pool. GLib aborts the process if the system refuses one. So
/// this first makes sure that several threads can be had, and returns false without calling GLib if they
/// cannot; a later call tries again. Once it has returned true, GLib needs no further thread for a bus.
///
/// What remains is a moment of microseconds in which the host, or another process of the user, may take all
/// of the threads that have just been found to be available.
///
/// Call `initialiseSockets` before, and this on one of our threads, whose signal mask and priority GLib's
/// threads inherit; the thread must have a main context of its own.
[[nodiscard]] bool startGlibThreads();

}  // namespace vorna::glib
