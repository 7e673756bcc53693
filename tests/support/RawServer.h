// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A server on a loopback port that does to each connection what the test says, byte by byte: the answers
/// that no proper server gives.
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
/// Knobs: the script, called for each connection on a thread of its own; when it returns, the connection is
/// closed. Remembered: how many connections came, and what each of them sent.

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
    /// One connection, for the script.
    class Connection {
      public:
        Connection(const Connection&) = delete;
        Connection& operator=(const Connection&) = delete;
        Connection(Connection&&) = delete;
        Connection& operator=(Connection&&) = delete;
        ~Connection();

        /// 0 for the first that came.
        std::size_t number() const noexcept { return number_; }

        /// The next HTTP request: its head and as many bytes as its Content-Length says. Shorter when the
        /// peer closes before; empty when nothing comes any more.
        std::string readRequest();

        /// Sends all the bytes. False when the peer has gone.
        bool send(std::string_view bytes) const;

        /// Leaves the connection open and does nothing until the peer closes it or the server goes.
        void hang();

        /// Ends the connection so that the peer sees a reset. Nothing can be done with it any more.
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
    /// Ends all connections and waits for their scripts.
    ~RawServer();

    std::uint16_t port() const noexcept;

    /// "http://127.0.0.1:PORT" and the path.
    std::string url(std::string_view path) const;

    std::size_t connectionCount() const;

    /// The bytes that came on each connection so far.
    std::vector<std::string> received() const;

    /// False when fewer connections have come even after a time that is long enough for anything.
    bool waitForConnections(std::size_t count) const;

    /// A whole answer in HTTP/1.1 that ends the connection.
    static std::string httpAnswer(int status, std::string_view body);

  private:
    std::unique_ptr<State> state_;
};

}  // namespace vorna::support
