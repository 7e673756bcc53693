// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One server as connections see it.

#include <vorna/platform/curl/WaitingRequest.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>

namespace vorna {

struct ServerLane {
    static constexpr std::size_t mostConnections = 6;
    /// As many as servers commonly allow on one HTTP/2 connection.
    static constexpr std::size_t mostStreams = 128;

    std::deque<WaitingRequest> waiting;
    std::size_t underWay = 0;
    /// One request goes ahead to open a connection, for what the others may do depends on the protocol that
    /// it brings; and a server that cannot be reached costs one request a time-out, not all of them.
    bool isReachable = false;
    /// Learned from the server's last answer.
    bool multiplexes = false;
    /// When a request was last put on the wire, or answered.
    std::optional<std::chrono::steady_clock::time_point> progressed;

    bool canAdmit() const { return !waiting.empty() && room() > 0; }

    std::size_t room() const {
        const std::size_t most = !isReachable ? 1 : (multiplexes ? mostStreams : mostConnections);
        return underWay < most ? most - underWay : 0;
    }
};

}  // namespace vorna
