// SPDX-License-Identifier: Apache-2.0
#include <tests/tools/devserver/HttpClient.h>

#include <vorna/platform/FileDescriptor.h>

#include <arpa/inet.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <stdexcept>
#include <utility>

namespace vorna::devserver {
namespace {

size_t appendBody(char* data, size_t size, size_t count, void* target) {
    static_cast<std::string*>(target)->append(data, size * count);
    return size * count;
}

size_t readHeader(char* data, size_t size, size_t count, void* target) {
    std::string line(data, size * count);
    const std::size_t colon = line.find(": ");
    if (colon != std::string::npos) {
        std::string name = line.substr(0, colon);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
        (*static_cast<std::map<std::string, std::string>*>(target))[name] =
            line.substr(colon + 2, line.find_last_not_of("\r\n") - colon - 1);
    }
    return size * count;
}

}  // namespace

HttpClient::HttpClient(std::string service, std::string authority)
    : service_(std::move(service)),
      authority_(std::move(authority)),
      handle_(curl_easy_init(), &curl_easy_cleanup) {}

Exchange HttpClient::send(std::string_view method, std::string_view path, std::string_view body,
                          const std::vector<std::string>& headers) {
    CURL* const handle = handle_.get();
    curl_easy_reset(handle);
    Exchange exchange;
    const std::string url = service_ + std::string(path);
    const std::string verb(method);
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, timeout_);
    curl_easy_setopt(handle, CURLOPT_NOPROXY, "*");
    if (!authority_.empty()) {
        curl_easy_setopt(handle, CURLOPT_CAINFO, authority_.c_str());
    }
    if (verb == "HEAD") {
        curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    } else if (verb == "POST") {
        curl_easy_setopt(handle, CURLOPT_POST, 1L);
        curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.data());
    } else {
        curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, verb.c_str());
    }
    std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> list(nullptr, &curl_slist_free_all);
    for (const std::string& header : headers) {
        list.reset(curl_slist_append(list.release(), header.c_str()));
    }
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, list.get());
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, appendBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &exchange.body);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, readHeader);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, &exchange.headers);
    exchange.result = curl_easy_perform(handle);
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &exchange.status);
    return exchange;
}

std::string speakRaw(int port, std::string_view bytes, Afterwards afterwards) {
    const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    timeval patience{30, 0};
    ::setsockopt(socket.number(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    if (::connect(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        return "(not connected)";
    }
    while (!bytes.empty()) {
        const ssize_t sent = ::send(socket.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            break;  // the peer closed before it had read everything
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    if (afterwards == Afterwards::hangsUp) {
        return {};
    }
    if (afterwards == Afterwards::stopsSending) {
        ::shutdown(socket.number(), SHUT_WR);
    }
    std::string received;
    std::array<char, 65536> buffer{};
    while (true) {
        const ssize_t count = ::recv(socket.number(), buffer.data(), buffer.size(), 0);
        if (count <= 0) {
            const char* const failure = errno == ECONNRESET ? "(reset)" : "(silence)";
            return received + (count == 0 ? "" : failure);
        }
        received.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace vorna::devserver
