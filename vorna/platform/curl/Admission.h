// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Decides which request may start when, without libcurl, clock or threads.

#include <vorna/platform/curl/RequestPlan.h>
#include <vorna/platform/curl/ServerLane.h>
#include <vorna/platform/curl/WaitingRequest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

namespace vorna {

class Admission {
  public:
    /// A request that may start now. Its lane counts it as in flight until `requestEnded`.
    struct Admitted {
        WaitingRequest request;
        ServerLane* lane = nullptr;
    };

    using End = std::function<void(const WaitingRequest& request)>;

    /// Queues the request behind those to the same server. If memory runs out, throws and leaves the request
    /// unchanged.
    void add(WaitingRequest& request);

    bool canAdmit() const;

    bool hasWaiting() const;

    /// The next request that may start; std::nullopt if none may. Requests to the same server start in the
    /// order added.
    std::optional<Admitted> next();

    bool hasCancellable() const noexcept { return cancellableCount_ > 0; }

    /// Removes the waiting requests that have been cancelled, each after `end`. False if there were none.
    bool removeCancelled(const End& end);

    /// Removes all waiting requests, each after `end`, and forgets the servers.
    void removeAll(const End& end);

    /// Forgets servers once there are many. Only while nothing waits or is in flight.
    void trim();

  private:
    /// Scheme, host and port.
    using Server = std::tuple<std::string, std::string, std::uint16_t>;

    ServerLane& laneFor(const std::shared_ptr<const RequestPlan>& plan);

    std::map<Server, ServerLane, std::less<>> lanes_;
    /// The plan of the last request and its lane: usually those of the next one too.
    std::shared_ptr<const RequestPlan> lastPlan_;
    ServerLane* lastLane_ = nullptr;
    std::size_t cancellableCount_ = 0;
};

}  // namespace vorna
