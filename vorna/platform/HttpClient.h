// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The port to an HTTP client: the library passes requests to it and never waits. The default implementation
/// is CurlHttpClient; a host may use its own network stack instead.

#include <vorna/base/Export.h>
#include <vorna/platform/URL.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace vorna {

enum class HttpMethod : std::uint8_t { get, head, post };

struct HttpHeader {
    std::string name;
    std::string value;

    friend bool operator==(const HttpHeader&, const HttpHeader&) = default;
};

struct HttpRequest {
    URL url;
    HttpMethod method = HttpMethod::get;
    /// Sent unchanged, along with those that the protocol requires. No other header is added, so the server
    /// learns nothing else about the application or the library.
    std::vector<HttpHeader> headers;
    std::string body;
    /// Starts when the request is sent; the wait for its turn does not count.
    std::chrono::milliseconds timeout{60'000};
    /// A response body of more bytes is a transport error.
    std::size_t responseLimit = std::size_t{16} * 1024 * 1024;
    /// Once a stop is requested, the request soon ends with an error, whether it is waiting or in flight.
    std::stop_token stop{};
};

struct HttpResponse {
    /// The address that responded, after redirects.
    std::string url;
    int statusCode = 0;
    /// In the order of arrival.
    std::vector<HttpHeader> headers;
};

/// Why there is no complete response: no connection, an untrusted certificate, a time-out, a malformed
/// response.
struct HttpError {
    /// One line, for developers.
    std::string description;
};

/// Describes the response on one line of a log: "Optional(<HTTPResponse: URL> { status code: 204, headers …
/// })" or "nil".
std::string debugDescription(const std::optional<HttpResponse>& response);

class VORNA_EXPORT HttpClient {
  public:
    /// Called once per request, on a thread of the client; must be quick and must not throw. Without an error
    /// there is a body, which may be empty. With an error there is no body, and a response only if its
    /// headers had arrived. Requests in flight when the process exits never complete, even if they are still
    /// answered.
    using Completion =
        std::function<void(std::optional<std::string> body, std::optional<HttpResponse> response,
                           std::optional<HttpError> error)>;

    HttpClient() = default;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;
    HttpClient(HttpClient&&) = delete;
    HttpClient& operator=(HttpClient&&) = delete;
    virtual ~HttpClient() = default;

    /// Queues the request and returns immediately, before any network activity. Any thread. Any number of
    /// requests may wait; those to the same server start in the order given.
    virtual void start(HttpRequest request, Completion completion) = 0;
};

}  // namespace vorna
