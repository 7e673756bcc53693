// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A loopback server scripted by the test, byte by byte: for answers that no proper server gives.
///
///     RawServer server([](RawServer::Connection& connection) {
///         connection.readRequest();
///         if (connection.number() == 0) {
///             return connection.reset();
///         }
///         connection.send(RawServer::httpAnswer(200, "{}"));
///     });
///     client.start({.url = *URL::parse(server.url("/v1/config"))}, completion);
///
/// Knobs: the script, called for each connection on its own thread; the connection is closed when it returns.
/// Records: the number of connections and the bytes received on each.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::support {

class RawServer {
    struct State;

  public:
    /// One connection, as the script sees it.
    class Connection {
      public:
        Connection(const Connection&) = delete;
        Connection& operator=(const Connection&) = delete;
        Connection(Connection&&) = delete;
        Connection& operator=(Connection&&) = delete;
        ~Connection();

        /// 0 for the first one.
        std::size_t number() const noexcept { return number_; }

        /// Reads the next HTTP request: its head and Content-Length bytes of body. Shorter if the peer closes
        /// early; empty if nothing more arrives.
        std::string readRequest();

        /// Sends all bytes. False if the peer has closed.
        bool send(std::string_view bytes) const;

        /// Keeps the connection open and silent until the peer closes it or the server is destroyed.
        void hang();

        /// Closes the connection with a reset. It must not be used afterwards.
        void reset();

      private:
        friend class RawServer;

        Connection(State& state, std::size_t number, int socket) noexcept
            : state_(state),
              number_(number),
              socket_(socket) {}

        bool receive();

        State& state_;
        std::size_t number_;
        int socket_;
        std::string unread_;
    };

    using Script = std::function<void(Connection&)>;

    explicit RawServer(Script script);
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;
    RawServer(RawServer&&) = delete;
    RawServer& operator=(RawServer&&) = delete;
    /// Closes all connections and waits for their scripts.
    ~RawServer();

    std::uint16_t port() const noexcept;

    /// "http://127.0.0.1:PORT" and the path.
    std::string url(std::string_view path) const;

    std::size_t connectionCount() const;

    /// Bytes received so far, by connection.
    std::vector<std::string> received() const;

    /// Waits for that many connections. False after a generous timeout.
    bool waitForConnections(std::size_t count) const;

    /// A complete HTTP/1.1 response with "Connection: close".
    static std::string httpAnswer(int status, std::string_view body);

  private:
    std::unique_ptr<State> state_;
};

}  // namespace vorna::support
