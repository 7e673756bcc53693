// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/prepareTransfer.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace vorna {

namespace {

constexpr long maxRedirects = 10;

bool isLoopback(const sockaddr& address) {
    if (address.sa_family == AF_INET) {
        const auto& ip = reinterpret_cast<const sockaddr_in&>(address);
        return (ntohl(ip.sin_addr.s_addr) >> 24U) == 127;
    }
    return address.sa_family == AF_INET6 &&
           IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
}

curl_socket_t openSocket(void* context, curlsocktype, curl_sockaddr* address) noexcept {
    const int opened = socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
#ifdef TCP_USER_TIMEOUT
    // A connection whose peer has silently vanished (another network, a sleeping router) would swallow
    // request after request. Dropping it after half a time-out leaves them time for another connection.
    const auto unacknowledged = static_cast<unsigned int>(
        static_cast<const CurlTransfer*>(context)->request.plan->timeout.count() / 2);
    if (opened >= 0) {
        setsockopt(opened, IPPROTO_TCP, TCP_USER_TIMEOUT, &unacknowledged, sizeof unacknowledged);
    }
#else
    static_cast<void>(context);
#endif
    return opened;
}

/// Without TLS nothing leaves this machine, regardless of what "localhost" or a redirect's host resolves to.
curl_socket_t openLoopbackSocket(void* context, curlsocktype purpose, curl_sockaddr* address) noexcept {
    return isLoopback(address->addr) ? openSocket(context, purpose, address) : CURL_SOCKET_BAD;
}

/// Sets everything except the body. The handle has no options set yet.
Result<void, CURLcode> setOptions(CurlTransfer& transfer, const TrustStore& trust) {
    CURL* const easy = transfer.easy.get();
    const RequestPlan& plan = *transfer.request.plan;
    const bool secure = plan.url.scheme() == "https";
    CURLcode failure = CURLE_OK;
    // For mandatory options.
    const auto set = [&](CURLoption option, auto value) {
        const CURLcode code = curl_easy_setopt(easy, option, value);
        failure = failure == CURLE_OK ? code : failure;
    };
    set(CURLOPT_URL, plan.url.text().c_str());
    set(CURLOPT_PROTOCOLS_STR, secure ? "https" : "http");
    set(CURLOPT_REDIR_PROTOCOLS_STR, secure ? "https" : "http");
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!trust.bundleFile.empty()) {
        set(CURLOPT_CAINFO, trust.bundleFile.c_str());
        // Adding a folder would gain nothing and would keep libcurl from sharing the parsed file between
        // connections.
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    } else if (!trust.hashedFolder.empty()) {
        set(CURLOPT_CAPATH, trust.hashedFolder.c_str());
    }

    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, plan.list.get());
    switch (plan.method) {
    case HttpMethod::get:
        curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
        break;
    case HttpMethod::head:
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
        break;
    case HttpMethod::post:
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
        break;
    }
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    // A silent name server delays neither other requests nor the end of the client.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);

    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, maxRedirects);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, secure ? openSocket : openLoopbackSocket);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, &transfer);
    if (secure) {
        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        // Wait for a connection that may turn out to multiplex rather than open another one.
        curl_easy_setopt(easy, CURLOPT_PIPEWAIT, 1L);
    } else {
        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        curl_easy_setopt(easy, CURLOPT_NOPROXY, "*");
    }

    curl_easy_setopt(easy, CURLOPT_PROXY_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));

    curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, CurlTransfer::onSending);
    curl_easy_setopt(easy, CURLOPT_PREREQDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, CurlTransfer::receiveBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, CurlTransfer::receiveHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer.error.data());
    curl_easy_setopt(easy, CURLOPT_PRIVATE, &transfer);
    if (failure != CURLE_OK) {
        return Unexpected(failure);
    }
    return {};
}

}  // namespace

Result<void, CURLcode> prepare(CurlTransfer& transfer, const TrustStore& trust) {
    CURL* const easy = transfer.easy.get();
    const WaitingRequest& request = transfer.request;
    if (transfer.configuredFor != request.plan) {
        transfer.configuredFor.reset();
        curl_easy_reset(easy);
        if (Result<void, CURLcode> isSet = setOptions(transfer, trust); !isSet) {
            return isSet;
        }
        transfer.configuredFor = request.plan;
    }
    if (request.plan->method == HttpMethod::post) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.data());
    }
    transfer.reset();
    return {};
}

}  // namespace vorna
