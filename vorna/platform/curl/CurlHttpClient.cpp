// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <vorna/platform/curl/CurlEngine.h>

#include <curl/curl.h>

#include <utility>

namespace vorna {

namespace {

void initialiseLibcurl() {
    static const CURLcode once = curl_global_init(CURL_GLOBAL_ALL);
    static_cast<void>(once);
}

}  // namespace

CurlHttpClient::CurlHttpClient(std::string certificateAuthorityFile) {
    // Before any registration of a stop at exit: what libcurl's own libraries tear down at exit must outlast
    // our thread.
    initialiseLibcurl();
    engine_ = std::make_shared<CurlEngine>(std::move(certificateAuthorityFile));
    CurlEngine::begin(engine_);
}

CurlHttpClient::~CurlHttpClient() {
    engine_->close();
}

void CurlHttpClient::start(HttpRequest request, Completion completion) {
    CurlEngine::start(engine_, std::move(request), std::move(completion));
}

}  // namespace vorna
