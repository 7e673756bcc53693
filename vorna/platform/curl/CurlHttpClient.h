// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The default HTTP client: one thread that drives libcurl's multi interface.
///
/// It uses HTTP/2 with multiplexing if the server offers it over TLS, otherwise HTTP/1.1 with at most six
/// connections per server. Connections are kept alive and handles are reused. A request that waits for its
/// turn is a small record, not a handle, so a hundred thousand of them cost little more than their bodies.
///
/// Only https is used, except to loopback addresses, and a redirect never changes the scheme. TLS is 1.2 or
/// newer and verifies the server's name. Proxies for https are taken from the usual environment variables.
///
/// A request that the server refuses to process on a connection, or whose reused connection closes before the
/// first byte of an answer, is sent once more on another connection; nothing else is ever repeated. While a
/// server cannot be reached, one request at a time is tried and the others wait.
///
/// In the child of a fork the client begins afresh with the next request: the parent's requests and
/// connections are left alone.

#include <vorna/platform/HttpClient.h>

#include <chrono>
#include <memory>
#include <string>

namespace vorna {

class CurlHttpClient final : public HttpClient {
  public:
    /// Trusts the authorities in the PEM file, or the system's if the name is empty. When the process exits,
    /// requests that were started before may go on for the grace; they are not completed.
    explicit CurlHttpClient(std::string certificateAuthorityFile,
                            std::chrono::milliseconds exitGrace = std::chrono::milliseconds(0));
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;
    CurlHttpClient(CurlHttpClient&&) = delete;
    CurlHttpClient& operator=(CurlHttpClient&&) = delete;
    /// Ends all requests with an error and waits for the thread, unless called on it. Requests that a
    /// completion starts meanwhile are dropped without being completed.
    ~CurlHttpClient() override;

    void start(HttpRequest request, Completion completion) override;

  private:
    class Life;

    const std::shared_ptr<Life> life_;
};

}  // namespace vorna
