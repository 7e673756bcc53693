// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::devserver {

/// The answer to one request.
struct Exchange {
    CURLcode result = CURLE_OK;
    long status = 0;
    std::map<std::string, std::string> headers;  ///< names in lower case
    std::string body;
};

/// A client like that of an application: libcurl, one persistent connection, certificates verified.
class HttpClient {
  public:
    /// `authority` is the certificate to trust; empty for plain HTTP.
    HttpClient(std::string service, std::string authority);

    [[nodiscard]] Exchange get(std::string_view path) { return send("GET", path, {}); }

    [[nodiscard]] Exchange post(std::string_view path, std::string_view body) {
        return send("POST", path, body);
    }

    /// `headers` are whole lines.
    [[nodiscard]] Exchange send(std::string_view method, std::string_view path, std::string_view body,
                                const std::vector<std::string>& headers = {});

    /// For later requests; 30 seconds by default.
    void setTimeout(long milliseconds) { timeout_ = milliseconds; }

  private:
    std::string service_;
    std::string authority_;
    long timeout_ = 30'000;
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle_;
};

/// The behaviour of a bare client after sending.
enum class Afterwards { waits, stopsSending, hangsUp };

/// Sends `bytes` to a local port and returns what it receives until the peer closes (or resets, which adds
/// "(reset)"). A client that hangs up receives nothing.
[[nodiscard]] std::string speakRaw(int port, std::string_view bytes,
                                   Afterwards afterwards = Afterwards::waits);

}  // namespace vorna::devserver
