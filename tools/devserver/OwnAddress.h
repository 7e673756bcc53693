// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Tells requests that are meant for this server from those that a web page makes a browser send: under the
/// page's own name, which its DNS makes point to this machine, or from another origin.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::devserver {

class OwnAddress {
  public:
    /// Besides "localhost" and all loopback addresses, the server goes by these names or IP addresses.
    explicit OwnAddress(std::vector<std::string> names = {});

    /// Whether a Host header's value ("localhost:8443", "[::1]") is one of ours. The port does not matter: it
    /// may be forwarded from another one, and no page can choose our name.
    [[nodiscard]] bool isHost(std::string_view host) const;

    /// Whether an Origin header's value is that of a page that this server itself has served under that host.
    [[nodiscard]] static bool isSameOrigin(std::string_view origin, std::string_view host);

  private:
    std::vector<std::string> names_;
};

}  // namespace vorna::devserver
