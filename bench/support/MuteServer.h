// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A server that accepts connections and never answers, so that requests to it stay in flight.

#include <string>

namespace vorna::bench {

class MuteServer {
  public:
    /// Listens on a free loopback port. Throws std::system_error on failure.
    MuteServer();
    MuteServer(const MuteServer&) = delete;
    MuteServer& operator=(const MuteServer&) = delete;
    MuteServer(MuteServer&&) = delete;
    MuteServer& operator=(MuteServer&&) = delete;
    ~MuteServer();

    /// Such as "https://127.0.0.1:40001".
    const std::string& url() const { return url_; }

    /// Waits until a client has connected.
    void waitForClient() const;

  private:
    int socket_ = -1;
    std::string url_;
};

}  // namespace vorna::bench
