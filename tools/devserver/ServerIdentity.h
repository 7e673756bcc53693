// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace vorna::devserver {

/// The files that prove to a client who the server is.
struct ServerIdentity {
    std::filesystem::path authority;    ///< what clients are to trust
    std::filesystem::path certificate;  ///< of the server
    std::filesystem::path key;          ///< of the server
};

/// The identity kept in `folder` (ca.pem, ca.key, server.pem, server.key), so that a client configured once
/// stays configured. What is missing, has expired at `now`, cannot be read or does not name localhost, both
/// loopback addresses and `furtherNames` (DNS names or addresses) is made anew; the authority changes only
/// when it is itself missing, unreadable or expired. Throws std::runtime_error when a file cannot be written.
[[nodiscard]] ServerIdentity serverIdentity(const std::filesystem::path& folder,
                                            const std::vector<std::string>& furtherNames,
                                            std::chrono::system_clock::time_point now);

}  // namespace vorna::devserver
