// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <vorna/platform/Fork.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/NoCancellation.h>
#include <vorna/platform/Upkeep.h>
#include <vorna/platform/curl/CurlDriver.h>

#include <curl/curl.h>

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace vorna {

namespace {

void initialiseLibcurl() {
    static const CURLcode once = curl_global_init(CURL_GLOBAL_ALL);
    static_cast<void>(once);
}

}  // namespace

/// The driver of this process.
class CurlHttpClient::Life final : public KeepsRunning {
  public:
    Life(std::string certificateAuthorityFile, std::chrono::milliseconds exitGrace)
        : certificateAuthorityFile_(std::move(certificateAuthorityFile)),
          exitGrace_(exitGrace),
          driver_(std::make_shared<CurlDriver>(certificateAuthorityFile_, exitGrace_)) {}

    std::shared_ptr<CurlDriver> driver() {
        const std::scoped_lock lock(mutex_);
        if (generation_ != forkGeneration()) {
            auto own = std::make_shared<CurlDriver>(certificateAuthorityFile_, exitGrace_);
            leaveBehind(std::exchange(driver_, std::move(own)));
            generation_ = forkGeneration();
        }
        return driver_;
    }

    void ensureRunning() override { CurlDriver::startThread(driver()); }

    void end() {
        std::shared_ptr<CurlDriver> driver;
        bool isOwn = false;
        {
            const std::scoped_lock lock(mutex_);
            driver = driver_;
            isOwn = generation_ == forkGeneration();
        }
        // Completions may still start requests.
        if (isOwn) {
            driver->close();
        } else {
            leaveBehind(std::move(driver));
        }
    }

  private:
    /// Keeps a parent's driver for ever: to close its connections properly would tell the servers that the
    /// parent's are closed.
    static void leaveBehind(std::shared_ptr<CurlDriver> driver) {
        static NeverDestroyed<std::vector<std::shared_ptr<CurlDriver>>> parents;
        static NeverDestroyed<Mutex> mutex;
        const std::scoped_lock lock(*mutex);
        parents->push_back(std::move(driver));
    }

    const std::string certificateAuthorityFile_;
    const std::chrono::milliseconds exitGrace_;

    Mutex mutex_;
    std::shared_ptr<CurlDriver> driver_;
    unsigned generation_ = forkGeneration();
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
    life_->end();
}

void CurlHttpClient::start(HttpRequest request, Completion completion) {
    // The thread must be woken once it has a request.
    const NoCancellation untilWoken;
    CurlDriver::start(life_->driver(), std::move(request), std::move(completion));
}

}  // namespace vorna
