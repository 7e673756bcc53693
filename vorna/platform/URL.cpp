// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/URL.h>

#include <arpa/inet.h>
#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace vorna {

namespace {

using Handle = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

std::string part(CURLU* handle, CURLUPart name, unsigned int flags = 0) {
    char* text = nullptr;
    if (curl_url_get(handle, name, &text, flags) != CURLUE_OK) {
        return {};
    }
    const std::unique_ptr<char, decltype(&curl_free)> owned(text, &curl_free);
    return owned.get();
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
    // libcurl stops at a NUL and tolerates a third slash; an address given by a host is taken literally.
    const std::size_t authority = text.find("://");
    if (text.find('\0') != std::string_view::npos || authority == std::string_view::npos ||
        text.substr(authority + 3).starts_with('/')) {
        return std::nullopt;
    }
    const Handle handle(curl_url(), &curl_url_cleanup);
    URL url;
    url.text_ = text;
    if (!handle ||
        curl_url_set(handle.get(), CURLUPART_URL, url.text_.c_str(), CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK) {
        return std::nullopt;
    }
    url.scheme_ = lowered(part(handle.get(), CURLUPART_SCHEME));
    url.host_ = lowered(part(handle.get(), CURLUPART_HOST));
    if (url.host_.size() > 2 && url.host_.front() == '[') {
        url.host_ = url.host_.substr(1, url.host_.size() - 2);
    }
    const std::string port = part(handle.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
    std::from_chars(port.data(), port.data() + port.size(), url.port_);
    if (url.scheme_.empty() || url.host_.empty()) {
        return std::nullopt;
    }
    return url;
}

bool URL::isLoopback() const {
    if (host_ == "localhost" || host_ == "::1") {
        return true;
    }
    in_addr address{};
    return inet_pton(AF_INET, host_.c_str(), &address) == 1 && (ntohl(address.s_addr) >> 24U) == 127;
}

}  // namespace vorna
