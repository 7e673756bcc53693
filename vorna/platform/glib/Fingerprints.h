// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Whether the user can be recognised by a fingerprint: the only kind of biometrics for which Linux devices
/// have a common service (fprintd, on the system bus).

#include <stop_token>
#include <string>

namespace vorna {

/// True if a fingerprint reader has enrolled a finger of the user who runs this process. False if not, and if
/// the service is missing, refuses, or has not answered within about two seconds; immediately when a stop is
/// requested. The address is in D-Bus's form, such as "unix:path=/run/dbus/system_bus_socket"; only local
/// sockets are tried. Starts the service if necessary. Blocks; call it on one of our own threads.
bool isFingerEnrolled(const std::string& systemBusAddress, const std::stop_token& stop);

}  // namespace vorna
