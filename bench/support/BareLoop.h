// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The yardstick for delivery: the least that posts bodies with libcurl's multi interface as fast as it goes.
/// One thread, a fixed number of handles that are used again and again, connections kept alive and
/// multiplexed, nothing looked at but the status.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vorna::bench {

class BareLoop {
  public:
    /// As many requests are under way at a time as `parallel` says.
    BareLoop(const std::string& url, const std::string& certificateAuthorityFile, std::size_t parallel);
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;
    BareLoop(BareLoop&&) = delete;
    BareLoop& operator=(BareLoop&&) = delete;
    ~BareLoop();

    /// Posts all and returns how many had a status of 200. Connections stay open for the next call.
    std::uint64_t post(const std::vector<std::string>& bodies);

  private:
    struct State;

    std::unique_ptr<State> state_;
};

/// How many requests nginx has received so far, by its own count, this one included.
std::uint64_t requestsReceived(const std::string& statusURL);

}  // namespace vorna::bench
