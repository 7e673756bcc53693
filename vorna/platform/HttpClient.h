// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The HTTP client, as a port: the library hands requests over and never waits. The default implementation
/// is CurlHttpClient; a host may put its own network stack in its place.

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
    /// Sent as they stand, beside those that the protocol itself needs. No others are added that would tell
    /// the server something about the application or the library.
    std::vector<HttpHeader> headers;
    std::string body;
    /// Counted from the moment the request is put on the wire, not while it waits for its turn.
    std::chrono::milliseconds timeout{60'000};
    /// A response's body that grows beyond this many bytes is a transport error.
    std::size_t responseLimit = std::size_t{16} * 1024 * 1024;
    /// Asked to stop, the request ends soon with an error, wherever it is.
    std::stop_token stop{};
};

struct HttpResponse {
    /// The address that answered, after redirects.
    std::string url;
    int statusCode = 0;
    /// In the order received.
    std::vector<HttpHeader> headers;
};

/// What kept a request from a complete response: no connection, no trust, no time, a broken answer.
struct HttpError {
    /// One line for a developer to read.
    std::string description;
};

/// The response on one line for log lines: "Optional(<HTTPResponse: URL> { status code: 204, headers … })" or
/// "nil".
std::string debugDescription(const std::optional<HttpResponse>& response);

class VORNA_EXPORT HttpClient {
  public:
    /// Called once for each request, on a thread of the client; it must be quick and must not throw. Without
    /// an error there is a body (it may be empty). With an error there is no body, and a response only if its
    /// head had arrived. Requests under way when the process exits are never completed.
    using Completion =
        std::function<void(std::optional<std::string> body, std::optional<HttpResponse> response,
                           std::optional<HttpError> error)>;

    HttpClient() = default;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;
    HttpClient(HttpClient&&) = delete;
    HttpClient& operator=(HttpClient&&) = delete;
    virtual ~HttpClient() = default;

    /// Takes the request over and returns at once, before any network work. Any thread. Any number of
    /// requests may wait; they start in the order given for each server.
    virtual void start(HttpRequest request, Completion completion) = 0;
};

}  // namespace vorna
