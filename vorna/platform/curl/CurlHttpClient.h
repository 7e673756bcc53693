// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The default HTTP client: one thread around libcurl's multi interface.
///
/// HTTP/2 with multiplexing where the server offers it over TLS, HTTP/1.1 with at most six connections a
/// server otherwise; connections are kept alive and handles are used again. What waits for its turn is a
/// small record, not a handle, so a hundred thousand waiting requests cost little more than their bodies.
///
/// Only https is sent, except to loopback addresses, and a redirect stays with its scheme: it never leaves
/// https. TLS is 1.2 or newer with the server's name checked. Proxies for https are taken from the usual
/// environment variables.
///
/// A request that a server refuses to take on a connection, or that finds a connection from before dead and
/// gets no byte of an answer, is sent once more on another one; nothing else is ever repeated. To a server
/// that cannot be reached one request goes at a time, and the others go on waiting.

#include <vorna/platform/HttpClient.h>

#include <memory>
#include <string>

namespace vorna {

class CurlEngine;

class CurlHttpClient final : public HttpClient {
  public:
    /// Trusts the authorities in the PEM file, or those of the system when the name is empty.
    explicit CurlHttpClient(std::string certificateAuthorityFile);
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;
    CurlHttpClient(CurlHttpClient&&) = delete;
    CurlHttpClient& operator=(CurlHttpClient&&) = delete;
    /// Ends what is waiting or under way with an error and waits for the thread, unless it runs on it. What a
    /// completion starts meanwhile is dropped without one.
    ~CurlHttpClient() override;

    void start(HttpRequest request, Completion completion) override;

  private:
    std::shared_ptr<CurlEngine> engine_;
};

}  // namespace vorna
