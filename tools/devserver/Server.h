// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The network side of the server.

#include <tools/devserver/Console.h>
#include <tools/devserver/Router.h>
#include <tools/devserver/Statistics.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace vorna::devserver {

/// PEM files of a server's certificate chain and key.
struct TlsFiles {
    std::filesystem::path certificate;
    std::filesystem::path key;
};

struct ServerSettings {
    std::string address;
    std::uint16_t port = 0;       ///< 0: any free port
    std::optional<TlsFiles> tls;  ///< std::nullopt: plain HTTP
};

/// Accepts connections, speaks HTTP/1.1 over TLS 1.2 or newer (or without TLS), and carries out what the
/// router decides.
///
/// Everything runs on the thread that calls run(), the router included. A peer can affect only its own
/// connection.
class Server {
  public:
    /// Starts listening. Throws std::runtime_error, with a message for the user, if it cannot listen on the
    /// address or load the certificate. Router, statistics and console must outlive the server.
    Server(const ServerSettings& settings, Router& router, Statistics& statistics, const Console& console);
    ~Server();
    Server(const Server&) = delete;
    Server(Server&&) = delete;
    Server& operator=(const Server&) = delete;
    Server& operator=(Server&&) = delete;

    /// Returns the scheme and authority of the server, with the actual port.
    [[nodiscard]] std::string url() const;

    /// Serves until SIGINT, SIGTERM or a request to shut down, then closes all connections.
    void run();

  private:
    class Network;
    std::unique_ptr<Network> network_;
};

}  // namespace vorna::devserver
