// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlEngine.h>

#include <vorna/platform/BackgroundThread.h>
#include <vorna/platform/ProcessExit.h>

#include <unistd.h>

#include <algorithm>
#include <exception>
#include <new>
#include <string_view>
#include <utility>

namespace vorna {

namespace {

/// So that deadlines are points in time that the clock can count.
constexpr std::chrono::hours longestTimeout(24);
/// libcurl works for milliseconds at a stretch; a crowded machine may make a second of them. More would look
/// like a program that hangs.
constexpr std::chrono::seconds longestWork(1);
constexpr const char* cancelled = "The request was cancelled";

}  // namespace

CurlEngine::CurlEngine(std::string certificateAuthorityFile)
    : certificateAuthorityFile_(std::move(certificateAuthorityFile)),
      multi_(curl_multi_init()) {
    if (!multi_) {
        throw std::bad_alloc();
    }
    CURLM* const multi = multi_.get();
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS, static_cast<long>(ServerLane::mostConnections));
    curl_multi_setopt(multi, CURLMOPT_MAX_CONCURRENT_STREAMS, static_cast<long>(ServerLane::mostStreams));
}

void CurlEngine::begin(const std::shared_ptr<CurlEngine>& self) {
    const std::scoped_lock lock(self->mutex_);
    self->ensureThread(self);
}

void CurlEngine::start(const std::shared_ptr<CurlEngine>& self, HttpRequest request,
                       HttpClient::Completion completion) {
    std::string body = std::move(request.body);
    // A body may wait long and in large numbers; room to grow would be waste.
    constexpr std::size_t tolerable = 64;
    if (body.capacity() > body.size() + body.size() / tolerable) {
        body.shrink_to_fit();
    }
    request.timeout =
        std::clamp<std::chrono::milliseconds>(request.timeout, std::chrono::milliseconds(0), longestTimeout);
    const std::scoped_lock lock(self->mutex_);
    if (self->stop_ != Stop::no || processIsExiting()) {
        return;
    }
    if (!self->lastPlan_ || !self->lastPlan_->serves(request)) {
        self->lastPlan_ = RequestPlan::of(request);
    }
    self->incoming_.push_back({self->lastPlan_, std::move(body), std::move(completion)});
    self->ensureThread(self);
    self->wake();
}

/// Called with the lock held. Should the system refuse a thread, the next request asks again.
void CurlEngine::ensureThread(const std::shared_ptr<CurlEngine>& self) {
    if (thread_) {
        return;
    }
    // The thread holds the engine until it ends.
    thread_ = startBackgroundThread("vorna-http", ThreadPriority::normal, [self] { self->run(); });
    if (thread_) {
        threadId_ = thread_->get_id();
        stopAtProcessExit([weak = std::weak_ptr(self)](Time deadline) {
            if (const std::shared_ptr<CurlEngine> engine = weak.lock()) {
                engine->rest(deadline);
            }
        });
    }
}

/// Called with the lock held.
void CurlEngine::wake() {
    if (std::exchange(waits_, false)) {
        curl_multi_wakeup(multi_.get());
    }
}

void CurlEngine::close() {
    std::optional<std::thread> thread;
    {
        const std::scoped_lock lock(mutex_);
        if (stop_ == Stop::no) {
            stop_ = Stop::close;
        }
        thread.swap(thread_);
        wake();
    }
    if (!thread) {
        endAll();
    } else if (thread->get_id() == std::this_thread::get_id() || processIsExiting()) {
        thread->detach();
    } else {
        thread->join();
    }
}

void CurlEngine::rest(Time deadline) {
    std::unique_lock lock(mutex_);
    stop_ = Stop::rest;
    if (threadId_ == std::thread::id() || threadId_ == std::this_thread::get_id()) {
        return;
    }
    wake();
    if (!resting_.wait_until(lock, deadline, [this] { return rests_; })) {
        // A completion may take for ever, and touches nothing that is torn down. libcurl waits for nothing,
        // but where the processor is wanted by many it can be in the middle of a handshake still.
        resting_.wait_until(lock, deadline + longestWork, [this] { return rests_ || !isInLibcurl_; });
    }
}

void CurlEngine::run() noexcept {
    try {
        if (certificateAuthorityFile_.empty()) {
            trust_ = systemTrustStore();
        } else {
            trust_.bundleFile = certificateAuthorityFile_;
        }
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): libcurl's own default serves
    }
    for (;;) {
        {
            std::unique_lock lock(mutex_);
            if (stop_ == Stop::rest) {
                lock.unlock();
                restForEver();
            }
            if (stop_ == Stop::close) {
                break;
            }
        }
        takeIncoming();
        admit();
        perform();
        const bool hasFinished = finishDone();
        const bool hasEnded = endOverdue();
        const bool hasRemembered = finishForgotten();
        if (!hasFinished && !hasEnded && !hasRemembered && !canAdmit()) {
            waitForWork();
        }
    }
    endAll();
    const std::scoped_lock lock(mutex_);
    rests_ = true;
    resting_.notify_all();
}

void CurlEngine::perform() {
    {
        std::unique_lock lock(mutex_);
        if (stop_ == Stop::rest) {
            lock.unlock();
            restForEver();
        }
        isInLibcurl_ = true;
    }
    int running = 0;
    curl_multi_perform(multi_.get(), &running);
    {
        const std::scoped_lock lock(mutex_);
        isInLibcurl_ = false;
    }
    restIfExiting();
}

void CurlEngine::takeIncoming() {
    {
        const std::scoped_lock lock(mutex_);
        taken_.swap(incoming_);
    }
    // One by one, so that memory moves with the requests and is never held twice.
    for (; !taken_.empty(); taken_.pop_front()) {
        assign(taken_.front());
        restIfExiting();
    }
}

void CurlEngine::assign(WaitingRequest& request) {
    if (!request.plan->mayBeSent()) {
        request.fail("Only https is sent, and http to loopback addresses");
        return;
    }
    try {
        const bool mayBeCancelled = request.plan->stop.stop_possible();
        if (mayBeCancelled) {
            nextDeadline_ = std::min(nextDeadline_, request.plan->nextLook(Time::max()));
        }
        laneOf(request.plan).waiting.push_back(std::move(request));
        waitingCancellable_ += mayBeCancelled ? 1 : 0;
    } catch (const std::exception&) {
        request.fail(WaitingRequest::outOfMemory);
    }
}

ServerLane& CurlEngine::laneOf(const std::shared_ptr<const RequestPlan>& plan) {
    if (plan != assignedPlan_) {
        const URL& url = plan->url;
        assignedLane_ = &lanes_[Server{url.scheme(), url.host(), url.port()}];
        assignedPlan_ = plan;
    }
    return *assignedLane_;
}

bool CurlEngine::canAdmit() const {
    return std::any_of(lanes_.begin(), lanes_.end(),
                       [](const auto& entry) { return entry.second.canAdmit(); });
}

void CurlEngine::admit() {
    for (auto& [server, lane] : lanes_) {
        while (lane.canAdmit()) {
            WaitingRequest& next = lane.waiting.front();
            waitingCancellable_ -= next.plan->stop.stop_possible() ? 1 : 0;
            begin(next, lane);
            lane.waiting.pop_front();
        }
    }
}

void CurlEngine::begin(WaitingRequest& request, ServerLane& lane) {
    if (idle_.empty()) {
        try {
            idle_.emplace_front();
        } catch (const std::exception&) {
            request.fail(WaitingRequest::outOfMemory);
            return;
        }
        idle_.front().self = idle_.begin();
        idle_.front().easy.reset(curl_easy_init());
    }
    CurlTransfer& transfer = idle_.front();
    CURL* const easy = transfer.easy.get();
    transfer.request = std::move(request);
    transfer.lane = &lane;
    if (easy == nullptr) {
        transfer.request.fail(WaitingRequest::outOfMemory);
        idle_.pop_front();
        return;
    }
    if (const CURLcode refused = transfer.prepare(trust_); refused != CURLE_OK) {
        transfer.request.fail(curl_easy_strerror(refused));
        idle_.pop_front();
        return;
    }
    const CURLMcode code = curl_multi_add_handle(multi_.get(), easy);
    if (code != CURLM_OK) {
        transfer.request.fail(curl_multi_strerror(code));
        idle_.pop_front();
        return;
    }
    transfer.deadline = std::chrono::steady_clock::now() + transfer.request.plan->timeout;
    nextDeadline_ = std::min(nextDeadline_, transfer.request.plan->nextLook(transfer.deadline));
    ++lane.underWay;
    underWay_.splice(underWay_.end(), idle_, transfer.self);
}

bool CurlEngine::finishDone() {
    bool any = false;
    int left = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        any = true;
        // The message is gone with the removal of its handle.
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
        transfer.lane->isReachable = transfer.lane->isReachable && transfer.sendings > 0;
        if (transfer.sendings > redirects + 1) {
            // libcurl has repeated the request on another connection, and counts repetitions over a handle's
            // whole life until it gives up; resetting the handle makes it forget.
            transfer.preparedFor.reset();
        }
        transfer.lane->progressed = std::chrono::steady_clock::now();
        curl_multi_remove_handle(multi_.get(), easy);
        transfer.finish(code);
        restIfExiting();
        recycle(transfer);
    }
    return any;
}

/// Ends what has been on the wire for too long, what could not get there, and what nobody wants any more.
bool CurlEngine::endOverdue() {
    const Time now = std::chrono::steady_clock::now();
    if (now < nextDeadline_) {
        return false;
    }
    nextDeadline_ = Time::max();
    bool any = endCancelledWaiting(now);
    for (auto next = underWay_.begin(); next != underWay_.end();) {
        CurlTransfer& transfer = *next++;
        const bool isCancelled = transfer.request.plan->stop.stop_requested();
        if (!isCancelled && !isOverdue(transfer, now)) {
            nextDeadline_ = std::min(nextDeadline_, transfer.request.plan->nextLook(transfer.deadline));
            continue;
        }
        any = true;
        curl_multi_remove_handle(multi_.get(), transfer.easy.get());
        transfer.lane->isReachable = transfer.lane->isReachable && transfer.sendings > 0;
        transfer.refusal = isCancelled ? cancelled : "The request timed out";
        // What the handle went through is not known to us.
        transfer.preparedFor.reset();
        transfer.finish(CURLE_OPERATION_TIMEDOUT);
        restIfExiting();
        recycle(transfer);
    }
    return any;
}

bool CurlEngine::endCancelledWaiting(Time now) {
    if (waitingCancellable_ == 0) {
        return false;
    }
    const std::size_t before = waitingCancellable_;
    for (auto& [server, lane] : lanes_) {
        std::erase_if(lane.waiting, [this](WaitingRequest& request) {
            if (!request.plan->stop.stop_requested()) {
                return false;
            }
            request.fail(cancelled);
            --waitingCancellable_;
            return true;
        });
    }
    if (waitingCancellable_ > 0) {
        nextDeadline_ = now + RequestPlan::cancellationInterval;
    }
    return waitingCancellable_ < before;
}

/// Where a server answers before the request is all sent, libcurl may sleep over the end of the HTTP/2
/// stream: until something else makes it look, or for good.
bool CurlEngine::finishForgotten() {
    constexpr std::chrono::milliseconds patience(200);
    bool any = false;
    hasAnsweredPost_ = false;
    for (auto next = underWay_.begin(); next != underWay_.end();) {
        CurlTransfer& transfer = *next++;
        if (!transfer.hasHead || transfer.request.plan->method != HttpMethod::post) {
            continue;
        }
        hasAnsweredPost_ = true;
        if (!transfer.isWhole() || !transfer.isSent()) {
            continue;
        }
        const Time now = std::chrono::steady_clock::now();
        if (now - transfer.wholeSince.value_or(now) < patience) {
            transfer.wholeSince = transfer.wholeSince.value_or(now);
            continue;
        }
        any = true;
        curl_multi_remove_handle(multi_.get(), transfer.easy.get());
        transfer.preparedFor.reset();
        transfer.finish(CURLE_OK);
        restIfExiting();
        recycle(transfer);
    }
    return any;
}

bool CurlEngine::isOverdue(CurlTransfer& transfer, Time now) {
    if (now < transfer.deadline) {
        return false;
    }
    const std::chrono::milliseconds timeout = transfer.request.plan->timeout;
    const std::optional<Time> progressed = transfer.lane->progressed;
    if (transfer.sendings > 0 || !progressed || now - *progressed >= timeout) {
        return true;
    }
    // It waits inside libcurl while others of its server get through. That does not count; to be sure that it
    // has not been overlooked there, it lines up anew.
    CURL* const easy = transfer.easy.get();
    curl_multi_remove_handle(multi_.get(), easy);
    transfer.deadline = now + timeout;
    return curl_multi_add_handle(multi_.get(), easy) != CURLM_OK;
}

void CurlEngine::recycle(CurlTransfer& transfer) {
    --transfer.lane->underWay;
    transfer.lane = nullptr;
    transfer.request = {};
    constexpr std::size_t worthKeeping = 4096;
    if (transfer.body.capacity() > worthKeeping) {
        transfer.body = {};
    }
    idle_.splice(idle_.begin(), underWay_, transfer.self);
}

/// A burst is over: its handles, with their buffers, are worth more to the host than to us.
void CurlEngine::tidy() {
    if (!underWay_.empty()) {
        return;
    }
    while (idle_.size() > ServerLane::mostConnections) {
        idle_.pop_back();
    }
    constexpr std::size_t manyServers = 64;
    if (lanes_.size() > manyServers) {
        assignedPlan_.reset();
        lanes_.clear();
    }
}

std::chrono::milliseconds CurlEngine::longestPause() const {
    constexpr std::chrono::milliseconds longest = std::chrono::minutes(1);
    constexpr std::chrono::milliseconds untilALook(20);
    if (hasAnsweredPost_) {
        return untilALook;
    }
    if (nextDeadline_ == Time::max()) {
        return longest;
    }
    return std::clamp(
        std::chrono::ceil<std::chrono::milliseconds>(nextDeadline_ - std::chrono::steady_clock::now()),
        std::chrono::milliseconds(0), longest);
}

void CurlEngine::waitForWork() {
    tidy();
    {
        const std::scoped_lock lock(mutex_);
        if (stop_ != Stop::no || !incoming_.empty()) {
            return;
        }
        waits_ = true;
    }
    const CURLMcode code =
        curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(longestPause().count()), nullptr);
    if (code != CURLM_OK) {
        // Out of memory, most likely: rather slow than spinning.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const std::scoped_lock lock(mutex_);
    waits_ = false;
}

void CurlEngine::endAll() {
    static constexpr const char* closed = "The HTTP client has been closed";
    for (CurlTransfer& transfer : underWay_) {
        curl_multi_remove_handle(multi_.get(), transfer.easy.get());
        transfer.request.fail(closed);
    }
    underWay_.clear();
    idle_.clear();
    for (auto& [server, lane] : lanes_) {
        for (; !lane.waiting.empty(); lane.waiting.pop_front()) {
            lane.waiting.front().fail(closed);
        }
    }
    lanes_.clear();
    {
        const std::scoped_lock lock(mutex_);
        taken_.swap(incoming_);
    }
    for (; !taken_.empty(); taken_.pop_front()) {
        taken_.front().fail(closed);
    }
    multi_.reset();
}

/// To be asked when a completion has been called: the process may have gone far meanwhile.
void CurlEngine::restIfExiting() {
    if (processIsExiting()) {
        restForEver();
    }
}

void CurlEngine::restForEver() {
    {
        const std::scoped_lock lock(mutex_);
        rests_ = true;
    }
    resting_.notify_all();
    for (;;) {
        pause();
    }
}

}  // namespace vorna
