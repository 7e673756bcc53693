// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The generated certificates of the server.

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace vorna::devserver {

/// The files that authenticate the server to its clients.
struct ServerIdentity {
    std::filesystem::path authority;    ///< for clients to trust
    std::filesystem::path certificate;  ///< of the server
    std::filesystem::path key;          ///< of the server
};

/// Loads the identity in `folder` (ca.pem, ca.key, server.pem, server.key), so that a client need be
/// configured only once. Replaces files that are missing, unreadable, expired at `now`, or do not name
/// localhost, both loopback addresses and `additionalNames` (DNS names or addresses); the authority only if
/// it is itself missing, unreadable or expired. Throws std::runtime_error if a file cannot be written.
[[nodiscard]] ServerIdentity serverIdentity(const std::filesystem::path& folder,
                                            const std::vector<std::string>& additionalNames,
                                            std::chrono::system_clock::time_point now);

}  // namespace vorna::devserver
