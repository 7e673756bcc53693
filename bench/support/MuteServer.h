// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A server that lets clients connect and never says a word: whatever is sent to it stays under way.

#include <string>

namespace vorna::bench {

class MuteServer {
  public:
    /// Listens on a free port of the loopback address. Throws std::system_error when it cannot.
    MuteServer();
    MuteServer(const MuteServer&) = delete;
    MuteServer& operator=(const MuteServer&) = delete;
    MuteServer(MuteServer&&) = delete;
    MuteServer& operator=(MuteServer&&) = delete;
    ~MuteServer();

    /// As in "https://127.0.0.1:40001".
    const std::string& url() const { return url_; }

    /// Waits until a client has connected.
    void waitForClient() const;

  private:
    int socket_ = -1;
    std::string url_;
};

}  // namespace vorna::bench
