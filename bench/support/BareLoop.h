// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The yardstick for delivery: the minimum it takes to post bodies at full speed with libcurl's multi
/// interface. One thread, a fixed number of reused handles, connections kept alive and multiplexed, only the
/// status checked.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vorna::bench {

class BareLoop {
  public:
    /// Keeps `parallel` requests in flight.
    BareLoop(const std::string& url, const std::string& certificateAuthorityFile, std::size_t parallel);
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;
    BareLoop(BareLoop&&) = delete;
    BareLoop& operator=(BareLoop&&) = delete;
    ~BareLoop();

    /// Posts all bodies and returns how many were answered 200. Connections stay open for the next call.
    std::uint64_t post(const std::vector<std::string>& bodies);

  private:
    struct State;

    std::unique_ptr<State> state_;
};

/// The number of requests nginx has received, including this one.
std::uint64_t requestsReceived(const std::string& statusURL);

}  // namespace vorna::bench
