// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <vorna/platform/NoCancellation.h>
#include <vorna/platform/curl/CurlDriver.h>

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
    // Before the thread starts: its stop at exit then comes before the teardown that libcurl's libraries
    // register here.
    initialiseLibcurl();
    driver_ = std::make_shared<CurlDriver>(std::move(certificateAuthorityFile));
    CurlDriver::startThread(driver_);
}

CurlHttpClient::~CurlHttpClient() {
    driver_->close();
}

void CurlHttpClient::start(HttpRequest request, Completion completion) {
    // The thread must be woken once it has a request.
    const NoCancellation untilWoken;
    CurlDriver::start(driver_, std::move(request), std::move(completion));
}

}  // namespace vorna
