// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <tools/devserver/Console.h>
#include <tools/devserver/Router.h>
#include <tools/devserver/Statistics.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace vorna::devserver {

/// PEM files of a server's certificate chain and its key.
struct TlsFiles {
    std::filesystem::path certificate;
    std::filesystem::path key;
};

struct ServerSettings {
    std::string address;
    std::uint16_t port = 0;       ///< 0: any that is free
    std::optional<TlsFiles> tls;  ///< absent: plain HTTP
};

/// The network: accepts connections, speaks HTTP/1.1 over TLS 1.2 or newer (or plainly), asks the router, and
/// does to the connection what it says.
///
/// Everything happens on the thread that calls run(), the router's work included. Whatever a peer sends, at
/// worst its own connection ends.
class Server {
  public:
    /// Listens from here on. Throws std::runtime_error, fit to be shown, when the address cannot be had or
    /// the certificate does not load. Router, statistics and console outlive the server.
    Server(const ServerSettings& settings, Router& router, Statistics& statistics, const Console& console);
    ~Server();
    Server(const Server&) = delete;
    Server(Server&&) = delete;
    Server& operator=(const Server&) = delete;
    Server& operator=(Server&&) = delete;

    /// Scheme and authority that clients reach the server at, with the real port.
    [[nodiscard]] std::string url() const;

    /// Serves until SIGINT, SIGTERM or a request to stop; then closes every connection.
    void run();

  private:
    class Network;
    std::unique_ptr<Network> network_;
};

}  // namespace vorna::devserver
