// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The requests to one server: how many wait, how many are in flight, and what is known about the server.

#include <vorna/platform/curl/WaitingRequest.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>

namespace vorna {

struct ServerLane {
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::size_t maxConnections = 6;
    /// As many as servers commonly allow on one HTTP/2 connection.
    static constexpr std::size_t maxStreams = 128;

    std::deque<WaitingRequest> waiting;
    std::size_t underWay = 0;
    /// Until then one request goes first: how many may follow depends on its connection's protocol, and an
    /// unreachable server makes one request time out, not all of them.
    bool isReachable = false;
    /// Known from the server's last answer.
    bool multiplexes = false;
    /// When a request was last sent or answered.
    std::optional<Time> progressed;

    bool canAdmit() const {
        const std::size_t most = !isReachable ? 1 : (multiplexes ? maxStreams : maxConnections);
        return !waiting.empty() && underWay < most;
    }

    void requestSent(Time now) {
        progressed = now;
        isReachable = true;
    }

    void requestEnded(bool wasSent) {
        --underWay;
        isReachable = isReachable && wasSent;
    }
};

}  // namespace vorna
