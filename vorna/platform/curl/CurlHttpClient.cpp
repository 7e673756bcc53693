// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <vorna/platform/NoCancellation.h>
#include <vorna/platform/Upkeep.h>
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

class CurlHttpClient::Life final : public KeepsRunning {
  public:
    Life(std::string certificateAuthorityFile, std::chrono::milliseconds exitGrace)
        : driver_(std::make_shared<CurlDriver>(std::move(certificateAuthorityFile), exitGrace)) {}

    const std::shared_ptr<CurlDriver>& driver() const { return driver_; }

    void ensureRunning() override { CurlDriver::startThread(driver_); }

  private:
    const std::shared_ptr<CurlDriver> driver_;
};

CurlHttpClient::CurlHttpClient(std::string certificateAuthorityFile, std::chrono::milliseconds exitGrace)
    : life_([&] {
          // Before the thread starts: its stop at exit then comes before the teardown that libcurl's
          // libraries register here.
          initialiseLibcurl();
          return std::make_shared<Life>(std::move(certificateAuthorityFile), exitGrace);
      }()) {
    upkeep::add(life_);
    life_->ensureRunning();
}

CurlHttpClient::~CurlHttpClient() {
    life_->driver()->close();
}

void CurlHttpClient::start(HttpRequest request, Completion completion) {
    // The thread must be woken once it has a request.
    const NoCancellation untilWoken;
    CurlDriver::start(life_->driver(), std::move(request), std::move(completion));
}

}  // namespace vorna
