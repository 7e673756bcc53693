// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlDriver.h>

#include <vorna/platform/ProcessExit.h>
#include <vorna/platform/Upkeep.h>
#include <vorna/platform/curl/MultiHandle.h>
#include <vorna/platform/curl/prepareTransfer.h>

#include <algorithm>
#include <exception>
#include <new>
#include <stop_token>
#include <thread>
#include <utility>

namespace vorna {

namespace {

/// Keeps deadlines within the clock's range.
constexpr std::chrono::hours maxTimeout(24);
constexpr const char* cancelled = "The request was cancelled";

}  // namespace

CurlDriver::CurlDriver(std::string certificateAuthorityFile, std::chrono::milliseconds exitGrace)
    : certificateAuthorityFile_(std::move(certificateAuthorityFile)),
      exitGrace_(exitGrace),
      multi_(makeMultiHandle()) {
    if (!multi_) {
        throw std::bad_alloc();
    }
    CURLM* const multi = multi_.get();
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS, static_cast<long>(ServerLane::maxConnections));
    curl_multi_setopt(multi, CURLMOPT_MAX_CONCURRENT_STREAMS, static_cast<long>(ServerLane::maxStreams));
}

void CurlDriver::startThread(const std::shared_ptr<CurlDriver>& self) {
    const std::scoped_lock lock(self->mutex_);
    if (!self->isClosed_) {
        self->ensureThread(self);
    }
}

void CurlDriver::start(const std::shared_ptr<CurlDriver>& self, HttpRequest request,
                       HttpClient::Completion completion) {
    std::string body = std::move(request.body);
    // Many bodies may wait for long: spare capacity would add up.
    constexpr std::size_t toleratedFraction = 64;
    if (body.capacity() > body.size() + body.size() / toleratedFraction) {
        body.shrink_to_fit();
    }
    request.timeout =
        std::clamp<std::chrono::milliseconds>(request.timeout, std::chrono::milliseconds(0), maxTimeout);
    const std::scoped_lock lock(self->mutex_);
    if (self->isClosed_ || processIsExiting()) {
        return;
    }
    if (!self->lastPlan_ || !self->lastPlan_->serves(request)) {
        self->lastPlan_ = RequestPlan::of(request);
    }
    self->incoming_.push_back({self->lastPlan_, std::move(body), std::move(completion)});
    self->ensureThread(self);
    self->wake();
}

/// Called with the lock held. If the system refuses a thread, or host code has ended it, the next request or
/// other operation tries again.
void CurlDriver::ensureThread(const std::shared_ptr<CurlDriver>& self) {
    if (!thread_ || thread_->hasEnded()) {
        // The thread holds the driver until it ends.
        thread_ = ServiceThread::start(
            "vorna-http", ThreadPriority::normal, [self](ServiceThread::Self& thread) { self->run(thread); },
            exitGrace_);
        if (!thread_) {
            upkeep::request();
        }
    }
}

/// Called with the lock held.
void CurlDriver::wake() {
    if (std::exchange(isWaiting_, false)) {
        curl_multi_wakeup(multi_.get());
    }
}

void CurlDriver::close() {
    std::optional<ServiceThread> thread;
    {
        const std::scoped_lock lock(mutex_);
        isClosed_ = true;
        thread.swap(thread_);
    }
    if (thread && !thread->hasEnded()) {
        thread->join();
    } else {
        failAll();
    }
}

void CurlDriver::run(ServiceThread::Self& self) {
    self_ = &self;
    const std::stop_callback wakeOnStop(self.stopToken(), [this] {
        const std::scoped_lock lock(mutex_);
        wake();
    });
    loadTrust();
    while (goesOn()) {
        std::optional<ServiceThread::Self::Vital> exitWaits;
        if (processIsExiting()) {
            // Everything here may use libcurl, and no host code runs any more.
            exitWaits.emplace(self);
            parkIfExiting();
        }
        queueIncoming();
        startAdmitted();
        perform();
        const bool hasCompleted = finishCompleted();
        const bool hasEnded = endOverdue();
        const bool hasStalled = finishStalled();
        exitWaits.reset();
        if (!hasCompleted && !hasEnded && !hasStalled && !admission_.canAdmit()) {
            waitForWork();
        }
    }
    if (processIsExiting() || !self.mayGoOn()) {
        self.park();
    }
    failAll();
}

/// Until a stop is requested; when the process exits, until nothing is under way or the grace is over.
bool CurlDriver::goesOn() {
    return !self_->stopRequested() || (processIsExiting() && self_->mayGoOn() && isUnderWay());
}

/// What the client has been given counts, whether it has begun or not.
bool CurlDriver::isUnderWay() {
    const std::scoped_lock lock(mutex_);
    return !incoming_.empty() || !underWay_.empty() || admission_.hasWaiting();
}

void CurlDriver::loadTrust() {
    try {
        if (certificateAuthorityFile_.empty()) {
            trust_ = systemTrustStore();
        } else {
            trust_.bundleFile = certificateAuthorityFile_;
        }
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): libcurl's default applies
    }
}

void CurlDriver::perform() {
    {
        const ServiceThread::Self::Vital vital(*self_);
        // Checked only now: exit either waits for us or is seen here.
        if (self_->mayGoOn()) {
            int running = 0;
            curl_multi_perform(multi_.get(), &running);
        }
    }
    parkIfExiting();
}

void CurlDriver::queueIncoming() {
    {
        const std::scoped_lock lock(mutex_);
        batch_.swap(incoming_);
    }
    // One by one, so that each request's memory moves with it and is never held twice.
    for (; !batch_.empty(); batch_.pop_front()) {
        queue(batch_.front());
        parkIfExiting();
    }
}

void CurlDriver::queue(WaitingRequest& request) {
    const std::shared_ptr<const RequestPlan> plan = request.plan;
    if (!plan->isAllowed()) {
        request.fail("Only https is allowed, or http to a loopback address");
        return;
    }
    try {
        admission_.add(request);
        nextDeadline_ = std::min(nextDeadline_, plan->nextCheck(Time::max()));
    } catch (const std::exception&) {
        request.fail(WaitingRequest::outOfMemory);
    }
}

void CurlDriver::startAdmitted() {
    while (std::optional<Admission::Admitted> admitted = admission_.next()) {
        if (!startTransfer(*admitted)) {
            --admitted->lane->underWay;
        }
    }
}

/// False if the request has failed immediately.
bool CurlDriver::startTransfer(Admission::Admitted& admitted) {
    if (idle_.empty()) {
        try {
            idle_.emplace_front();
        } catch (const std::exception&) {
            admitted.request.fail(WaitingRequest::outOfMemory);
            return false;
        }
        idle_.front().self = idle_.begin();
        idle_.front().easy.reset(curl_easy_init());
    }
    CurlTransfer& transfer = idle_.front();
    transfer.request = std::move(admitted.request);
    transfer.lane = admitted.lane;
    const auto fail = [&](const char* description) {
        transfer.request.fail(description);
        idle_.pop_front();
        return false;
    };
    CURL* const easy = transfer.easy.get();
    if (easy == nullptr) {
        return fail(WaitingRequest::outOfMemory);
    }
    if (const auto prepared = prepare(transfer, trust_); !prepared) {
        return fail(curl_easy_strerror(prepared.error()));
    }
    if (const CURLMcode code = curl_multi_add_handle(multi_.get(), easy); code != CURLM_OK) {
        return fail(curl_multi_strerror(code));
    }
    transfer.deadline = std::chrono::steady_clock::now() + transfer.request.plan->timeout;
    nextDeadline_ = std::min(nextDeadline_, transfer.request.plan->nextCheck(transfer.deadline));
    underWay_.splice(underWay_.end(), idle_, transfer.self);
    return true;
}

bool CurlDriver::finishCompleted() {
    bool any = false;
    int left = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        any = true;
        // Removing the handle frees the message.
        CURL* const easy = message->easy_handle;
        const CURLcode code = message->data.result;
        char* context = nullptr;
        curl_easy_getinfo(easy, CURLINFO_PRIVATE, &context);
        CurlTransfer& transfer = *static_cast<CurlTransfer*>(static_cast<void*>(context));

        long version = 0;
        long redirects = 0;
        curl_easy_getinfo(easy, CURLINFO_HTTP_VERSION, &version);
        curl_easy_getinfo(easy, CURLINFO_REDIRECT_COUNT, &redirects);
        if (version != 0 && redirects == 0) {
            transfer.lane->multiplexes = version >= CURL_HTTP_VERSION_2_0;
        }
        if (transfer.sendCount > redirects + 1) {
            // libcurl has repeated the request on another connection. It limits repetitions over a handle's
            // lifetime; resetting the handle clears the count.
            transfer.configuredFor.reset();
        }
        transfer.lane->progressed = std::chrono::steady_clock::now();
        curl_multi_remove_handle(multi_.get(), easy);
        end(transfer, code);
    }
    return any;
}

/// Ends requests that have timed out or been cancelled.
bool CurlDriver::endOverdue() {
    const Time now = std::chrono::steady_clock::now();
    if (now < nextDeadline_ || processIsExiting()) {
        return false;
    }
    nextDeadline_ = Time::max();
    bool any = endCancelledWaiting(now);
    for (auto next = underWay_.begin(); next != underWay_.end();) {
        CurlTransfer& transfer = *next++;
        const bool isCancelled = transfer.request.plan->stop.stop_requested();
        if (!isCancelled && !isOverdue(transfer, now)) {
            nextDeadline_ = std::min(nextDeadline_, transfer.request.plan->nextCheck(transfer.deadline));
            continue;
        }
        any = true;
        curl_multi_remove_handle(multi_.get(), transfer.easy.get());
        transfer.abortReason = isCancelled ? cancelled : "The request timed out";
        // The handle may have repeated the request, as above.
        transfer.configuredFor.reset();
        end(transfer, CURLE_OPERATION_TIMEDOUT);
    }
    return any;
}

bool CurlDriver::endCancelledWaiting(Time now) {
    const bool any =
        admission_.removeCancelled([](const WaitingRequest& request) { request.fail(cancelled); });
    if (admission_.hasCancellable()) {
        nextDeadline_ = now + RequestPlan::cancellationInterval;
    }
    return any;
}

/// If a server answers before it has received the whole request, libcurl may overlook the end of the HTTP/2
/// stream until something else wakes it, or forever.
bool CurlDriver::finishStalled() {
    constexpr std::chrono::milliseconds stallTime(200);
    bool any = false;
    hasAnsweredPost_ = false;
    for (auto next = underWay_.begin(); next != underWay_.end();) {
        CurlTransfer& transfer = *next++;
        if (!transfer.hasHead || transfer.request.plan->method != HttpMethod::post) {
            continue;
        }
        hasAnsweredPost_ = true;
        if (!transfer.isComplete() || !transfer.isSent()) {
            continue;
        }
        const Time now = std::chrono::steady_clock::now();
        if (now - transfer.completeSince.value_or(now) < stallTime) {
            transfer.completeSince = transfer.completeSince.value_or(now);
            continue;
        }
        any = true;
        curl_multi_remove_handle(multi_.get(), transfer.easy.get());
        transfer.configuredFor.reset();
        end(transfer, CURLE_OK);
    }
    return any;
}

bool CurlDriver::isOverdue(CurlTransfer& transfer, Time now) {
    if (now < transfer.deadline) {
        return false;
    }
    const std::chrono::milliseconds timeout = transfer.request.plan->timeout;
    const std::optional<Time> progressed = transfer.lane->progressed;
    if (transfer.sendCount > 0 || !progressed || now - *progressed >= timeout) {
        return true;
    }
    // While it waits inside libcurl for others to its server, its time does not count. In case libcurl has
    // overlooked it, it is queued there again.
    CURL* const easy = transfer.easy.get();
    curl_multi_remove_handle(multi_.get(), easy);
    transfer.deadline = now + timeout;
    return curl_multi_add_handle(multi_.get(), easy) != CURLM_OK;
}

/// Completes the request, whose handle has been removed from libcurl.
void CurlDriver::end(CurlTransfer& transfer, CURLcode code) {
    // The host's completion may also end this thread with pthread_exit; the next one goes on from here.
    class Recycling {
      public:
        Recycling(CurlDriver& driver, CurlTransfer& transfer) noexcept
            : driver_(driver),
              transfer_(transfer) {}

        Recycling(const Recycling&) = delete;
        Recycling& operator=(const Recycling&) = delete;
        Recycling(Recycling&&) = delete;
        Recycling& operator=(Recycling&&) = delete;

        ~Recycling() { driver_.recycle(transfer_); }

      private:
        CurlDriver& driver_;
        CurlTransfer& transfer_;
    };

    const Recycling afterwards(*this, transfer);
    transfer.finish(code);
    parkIfExiting();
}

void CurlDriver::recycle(CurlTransfer& transfer) {
    transfer.lane->requestEnded(transfer.sendCount > 0);
    transfer.lane = nullptr;
    transfer.request = {};
    constexpr std::size_t maxKeptCapacity = 4096;
    if (transfer.body.capacity() > maxKeptCapacity) {
        transfer.body = {};
    }
    idle_.splice(idle_.begin(), underWay_, transfer.self);
}

/// Frees most handles, with their buffers, after a burst.
void CurlDriver::trim() {
    if (!underWay_.empty() || processIsExiting()) {
        return;
    }
    while (idle_.size() > ServerLane::maxConnections) {
        idle_.pop_back();
    }
    admission_.trim();
}

std::chrono::milliseconds CurlDriver::pollTimeout() const {
    constexpr std::chrono::milliseconds longest = std::chrono::minutes(1);
    constexpr std::chrono::milliseconds stallCheckInterval(20);
    if (hasAnsweredPost_) {
        return stallCheckInterval;
    }
    const Time next = std::min(nextDeadline_, self_->endOfGrace());
    if (next == Time::max()) {
        return longest;
    }
    return std::clamp(std::chrono::ceil<std::chrono::milliseconds>(next - std::chrono::steady_clock::now()),
                      std::chrono::milliseconds(0), longest);
}

void CurlDriver::waitForWork() {
    trim();
    {
        const std::scoped_lock lock(mutex_);
        const bool isClosing = self_->stopRequested() && !processIsExiting();
        if (isClosing || !incoming_.empty()) {
            return;
        }
        isWaiting_ = true;
    }
    const CURLMcode code =
        curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(pollTimeout().count()), nullptr);
    if (code != CURLM_OK) {
        // Most likely out of memory: slow down rather than spin.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const std::scoped_lock lock(mutex_);
    isWaiting_ = false;
}

void CurlDriver::failAll() {
    const auto fail = [](const WaitingRequest& request) { request.fail("The HTTP client has been closed"); };
    for (CurlTransfer& transfer : underWay_) {
        curl_multi_remove_handle(multi_.get(), transfer.easy.get());
        fail(transfer.request);
    }
    underWay_.clear();
    idle_.clear();
    admission_.removeAll(fail);
    {
        const std::scoped_lock lock(mutex_);
        batch_.swap(incoming_);
    }
    for (; !batch_.empty(); batch_.pop_front()) {
        fail(batch_.front());
    }
    multi_.reset();
}

/// Checked after each completion as well: exit may be well advanced by then, and no longer wait for this
/// thread.
void CurlDriver::parkIfExiting() {
    if (!self_->mayGoOn()) {
        self_->park();
    }
}

}  // namespace vorna
