// SPDX-License-Identifier: Apache-2.0
#include <bench/support/BareLoop.h>

#include <curl/curl.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace vorna::bench {

namespace {

struct EasyDeleter {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
};

struct MultiDeleter {
    void operator()(CURLM* handle) const noexcept { curl_multi_cleanup(handle); }
};

struct ListDeleter {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};

using EasyHandle = std::unique_ptr<CURL, EasyDeleter>;

std::size_t drop(const char*, std::size_t, std::size_t count, void*) {
    return count;
}

std::size_t keep(const char* bytes, std::size_t, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(bytes, count);
    return count;
}

}  // namespace

/// In this order: handles must be destroyed before what they use.
struct BareLoop::State {
    std::unique_ptr<curl_slist, ListDeleter> headers;
    std::unique_ptr<CURLM, MultiDeleter> multi;
    std::vector<EasyHandle> handles;
};

BareLoop::BareLoop(const std::string& url, const std::string& certificateAuthorityFile, std::size_t parallel)
    : state_(std::make_unique<State>()) {
    curl_slist* headers = curl_slist_append(nullptr, "Content-Type: application/json");
    headers = curl_slist_append(headers, "Accept:");
    state_->headers.reset(curl_slist_append(headers, "Expect:"));
    state_->multi.reset(curl_multi_init());
    CURLM* const multi = state_->multi.get();
    constexpr long connections = 6;
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS, connections);
    curl_multi_setopt(multi, CURLMOPT_MAX_CONCURRENT_STREAMS, static_cast<long>(parallel));
    for (std::size_t index = 0; index < parallel; ++index) {
        CURL* const easy = state_->handles.emplace_back(curl_easy_init()).get();
        curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
        curl_easy_setopt(easy, CURLOPT_CAINFO, certificateAuthorityFile.c_str());
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, state_->headers.get());
        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        curl_easy_setopt(easy, CURLOPT_PIPEWAIT, 1L);
        curl_easy_setopt(easy, CURLOPT_TCP_NODELAY, 1L);
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, drop);
    }
}

BareLoop::~BareLoop() = default;

std::uint64_t BareLoop::post(const std::vector<std::string>& bodies) {
    CURLM* const multi = state_->multi.get();
    std::uint64_t delivered = 0;
    std::size_t next = 0;
    const auto begin = [&](CURL* easy) {
        const std::string& body = bodies[next++];
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body.data());
        curl_multi_add_handle(multi, easy);
    };
    for (std::size_t index = 0; index < std::min(state_->handles.size(), bodies.size()); ++index) {
        begin(state_->handles[index].get());
    }
    int running = 1;
    while (running > 0) {
        curl_multi_perform(multi, &running);
        int left = 0;
        bool any = false;
        while (const CURLMsg* const message = curl_multi_info_read(multi, &left)) {
            CURL* const easy = message->easy_handle;
            long status = 0;
            curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
            delivered += message->data.result == CURLE_OK && status == 200 ? 1 : 0;
            curl_multi_remove_handle(multi, easy);
            if (next < bodies.size()) {
                begin(easy);
                running = 1;
            }
            any = true;
        }
        if (running > 0 && !any) {
            curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
        }
    }
    return delivered;
}

std::uint64_t requestsReceived(const std::string& statusURL) {
    const EasyHandle easy(curl_easy_init());
    std::string text;
    curl_easy_setopt(easy.get(), CURLOPT_URL, statusURL.c_str());
    curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, keep);
    curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &text);
    const CURLcode code = curl_easy_perform(easy.get());
    // The third line has three numbers: accepted, handled, requests.
    const std::string heading = "requests\n";
    const std::size_t at = text.find(heading);
    if (code != CURLE_OK || at == std::string::npos) {
        throw std::runtime_error("nginx does not report its request count: " + text);
    }
    char* end = text.data() + at + heading.size();
    std::strtoull(end, &end, 10);
    std::strtoull(end, &end, 10);
    return std::strtoull(end, &end, 10);
}

}  // namespace vorna::bench
