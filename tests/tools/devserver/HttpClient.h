// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <curl/curl.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::devserver {

/// What came back from one request.
struct Exchange {
    CURLcode result = CURLE_OK;
    long status = 0;
    std::map<std::string, std::string> headers;  ///< names in lower case
    std::string body;
};

/// A client as an application would have it: libcurl, one connection kept between requests, certificates
/// verified.
class HttpClient {
  public:
    /// `authority` is the certificate to trust; empty where the service speaks plain HTTP.
    HttpClient(std::string service, std::string authority);

    [[nodiscard]] Exchange get(std::string_view path) { return send("GET", path, {}); }

    [[nodiscard]] Exchange post(std::string_view path, std::string_view body) {
        return send("POST", path, body);
    }

    /// `headers` are whole lines.
    [[nodiscard]] Exchange send(std::string_view method, std::string_view path, std::string_view body,
                                const std::vector<std::string>& headers = {});

    /// For the requests that follow; 30 seconds at first.
    void setTimeout(long milliseconds) { timeout_ = milliseconds; }

  private:
    std::string service_;
    std::string authority_;
    long timeout_ = 30'000;
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle_;
};

/// What a bare client does once it has sent all it has to send.
enum class Afterwards { waits, stopsSending, hangsUp };

/// Sends `bytes` to a port of this machine without any protocol, and returns what comes back until the peer
/// closes (or resets, which adds "(reset)"). One that hangs up gets nothing.
[[nodiscard]] std::string speakRaw(int port, std::string_view bytes,
                                   Afterwards afterwards = Afterwards::waits);

}  // namespace vorna::devserver
