#include <vorna/platform/curl/CurlHttpClient.h>

#include <vorna/platform/BackgroundThread.h>
#include <vorna/platform/ProcessExit.h>
#include <vorna/platform/curl/TrustStore.h>

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace vorna {

namespace {

using Time = std::chrono::steady_clock::time_point;

constexpr std::size_t mostConnectionsPerServer = 6;
/// As many as servers commonly allow on one HTTP/2 connection.
constexpr std::size_t mostStreamsPerServer = 128;
constexpr long mostRedirects = 10;
/// So that deadlines are points in time that the clock can count.
constexpr std::chrono::hours longestTimeout(24);
/// All lines of an answer's head together, in bytes.
constexpr std::size_t largestHead = std::size_t{256} * 1024;

struct ListDeleter {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};

using HeaderList = std::unique_ptr<curl_slist, ListDeleter>;

struct EasyDeleter {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
};

using EasyHandle = std::unique_ptr<CURL, EasyDeleter>;

struct MultiDeleter {
    void operator()(CURLM* handle) const noexcept { curl_multi_cleanup(handle); }
};

using MultiHandle = std::unique_ptr<CURLM, MultiDeleter>;

/// How often is looked whether somebody has cancelled a request, while there is one that may be.
constexpr std::chrono::milliseconds cancellationInterval(200);

/// What requests of one kind have in common. All events share one such value, so that a waiting request costs
/// its body and a pointer.
struct Plan {
    URL url;
    HttpMethod method = HttpMethod::get;
    std::vector<HttpHeader> headers;
    std::chrono::milliseconds timeout{};
    std::size_t responseLimit = 0;
    std::stop_token stop;
    HeaderList list;

    /// When a request of this kind is to be looked at again.
    Time nextLook(Time deadline) const {
        return stop.stop_possible()
                   ? std::min(deadline, std::chrono::steady_clock::now() + cancellationInterval)
                   : deadline;
    }

    bool serves(const HttpRequest& request) const {
        return url == request.url && method == request.method && headers == request.headers &&
               timeout == request.timeout && responseLimit == request.responseLimit && stop == request.stop;
    }
};

/// A header as libcurl wants it. An empty value needs a semicolon, or it would mean "leave this header out".
std::string headerLine(const HttpHeader& header) {
    return header.value.empty() ? header.name + ";" : header.name + ": " + header.value;
}

void append(HeaderList& list, const std::string& line) {
    curl_slist* const longer = curl_slist_append(list.get(), line.c_str());
    if (longer == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(list.release());
    list.reset(longer);
}

std::shared_ptr<const Plan> makePlan(const HttpRequest& request) {
    auto plan = std::make_shared<Plan>(Plan{request.url, request.method, request.headers, request.timeout,
                                            request.responseLimit, request.stop, nullptr});
    // libcurl adds these of its own accord; a name without a value takes them away again.
    for (const char* const unwanted : {"Accept:", "Expect:", "Content-Type:"}) {
        append(plan->list, unwanted);
    }
    for (const HttpHeader& header : request.headers) {
        append(plan->list, headerLine(header));
    }
    return plan;
}

struct Waiting {
    std::shared_ptr<const Plan> plan;
    std::string body;
    HttpClient::Completion completion;
};

/// One server as connections see it.
struct Lane {
    std::deque<Waiting> waiting;
    std::size_t underWay = 0;
    /// One request goes ahead to open a connection, for what the others may do depends on the protocol that
    /// it brings; and a server that cannot be reached costs one request a time-out, not all of them.
    bool isReachable = false;
    /// Learned from the server's last answer.
    bool multiplexes = false;
    /// When a request was last put on the wire, or answered.
    std::optional<Time> progressed;

    bool canAdmit() const { return !waiting.empty() && room() > 0; }

    std::size_t room() const {
        const std::size_t most =
            !isReachable ? 1 : (multiplexes ? mostStreamsPerServer : mostConnectionsPerServer);
        return underWay < most ? most - underWay : 0;
    }
};

/// A handle of libcurl with what belongs to the request that it carries at present.
struct Transfer {
    EasyHandle easy;
    std::list<Transfer>::iterator self;
    Waiting request;
    Lane* lane = nullptr;
    /// The plan that the handle's options were last set for.
    std::shared_ptr<const Plan> preparedFor;

    /// How often the request was put on the wire, with redirects and with libcurl's own repetitions.
    long sendings = 0;
    Time deadline;

    std::string url;
    int status = 0;
    std::size_t headSize = 0;
    bool hasHead = false;
    std::vector<HttpHeader> headers;
    std::string body;
    /// When the answer was first found whole although libcurl still waits.
    std::optional<Time> wholeSince;
    /// Why the answer was given up, when that was our decision.
    const char* refusal = nullptr;
    std::array<char, CURL_ERROR_SIZE> error{};
};

constexpr const char* outOfMemory = "Out of memory";
constexpr const char* cancelled = "The request was cancelled";

std::size_t refuse(Transfer& transfer, const char* reason) noexcept {
    transfer.refusal = reason;
    return CURL_WRITEFUNC_ERROR;
}

std::size_t receiveBody(const char* bytes, std::size_t, std::size_t count, void* context) noexcept {
    Transfer& transfer = *static_cast<Transfer*>(context);
    if (count > transfer.request.plan->responseLimit - transfer.body.size()) {
        return refuse(transfer, "The response's body is larger than allowed");
    }
    try {
        transfer.body.append(bytes, count);
    } catch (const std::exception&) {
        return refuse(transfer, outOfMemory);
    }
    return count;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Lines of a head as libcurl hands them over: those of every answer that comes, redirects included.
void receiveHeaderLine(Transfer& transfer, std::string_view line) {
    CURL* const easy = transfer.easy.get();
    if (line.starts_with("HTTP/")) {
        constexpr std::size_t usually = 8;
        transfer.headers.clear();
        transfer.headers.reserve(usually);
        transfer.hasHead = false;
        transfer.headSize = line.size();
        return;
    }
    if (const std::size_t colon = line.find(':'); colon != std::string_view::npos) {
        transfer.headers.push_back(
            {std::string(trimmed(line.substr(0, colon))), std::string(trimmed(line.substr(colon + 1)))});
    } else if (trimmed(line).empty() && !transfer.hasHead) {
        long status = 0;
        char* url = nullptr;
        curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
        curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &url);
        transfer.url = url == nullptr ? transfer.request.plan->url.text() : url;
        transfer.status = static_cast<int>(status);
        constexpr long lastInterimStatus = 199;
        transfer.hasHead = status > lastInterimStatus;
    }
}

std::size_t receiveHeader(const char* bytes, std::size_t, std::size_t count, void* context) noexcept {
    Transfer& transfer = *static_cast<Transfer*>(context);
    transfer.headSize += count;
    if (transfer.headSize > largestHead) {
        return refuse(transfer, "The response's head is larger than allowed");
    }
    try {
        receiveHeaderLine(transfer, {bytes, count});
    } catch (const std::exception&) {
        return refuse(transfer, outOfMemory);
    }
    return count;
}

/// libcurl calls this when a connection stands and the request is next.
int countSending(void* context, char*, char*, int, int) noexcept {
    Transfer& transfer = *static_cast<Transfer*>(context);
    Lane& lane = *transfer.lane;
    const Time now = std::chrono::steady_clock::now();
    lane.progressed = now;
    lane.isReachable = true;
    if (transfer.sendings == 0) {
        transfer.deadline = now + transfer.request.plan->timeout;
    }
    ++transfer.sendings;
    return CURL_PREREQFUNC_OK;
}

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
    // A connection whose peer has vanished without a word (another network, a sleeping router) would swallow
    // request after request. Given up in half a request's time, it leaves them time for another connection.
    const auto unacknowledged =
        static_cast<unsigned int>(static_cast<const Transfer*>(context)->request.plan->timeout.count() / 2);
    if (opened >= 0) {
        setsockopt(opened, IPPROTO_TCP, TCP_USER_TIMEOUT, &unacknowledged, sizeof unacknowledged);
    }
#else
    static_cast<void>(context);
#endif
    return opened;
}

/// Without TLS nothing leaves this machine, whatever the name "localhost" or a redirect resolves to.
curl_socket_t openLoopbackSocket(void* context, curlsocktype purpose, curl_sockaddr* address) noexcept {
    return isLoopback(address->addr) ? openSocket(context, purpose, address) : CURL_SOCKET_BAD;
}

/// Whether an answer has come to its last byte, as far as its head tells how many there are.
bool isWhole(const Transfer& transfer) {
    const bool isRedirect = transfer.status >= 300 && transfer.status < 400;
    if (!transfer.hasHead || isRedirect || transfer.refusal != nullptr) {
        return false;
    }
    constexpr int noContent = 204;
    if (transfer.status == noContent || transfer.request.plan->method == HttpMethod::head) {
        return true;
    }
    curl_off_t declared = -1;
    curl_off_t received = 0;
    curl_easy_getinfo(transfer.easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &declared);
    curl_easy_getinfo(transfer.easy.get(), CURLINFO_SIZE_DOWNLOAD_T, &received);
    return declared >= 0 && received == declared;
}

bool isSent(const Transfer& transfer) {
    curl_off_t sent = 0;
    curl_easy_getinfo(transfer.easy.get(), CURLINFO_SIZE_UPLOAD_T, &sent);
    return sent >= static_cast<curl_off_t>(transfer.request.body.size());
}

/// A server may answer, and end the stream or the connection, before the request's body is all sent. To
/// libcurl that is an error at times; a whole answer counts all the same.
bool isAnsweredDespite(CURLcode code, const Transfer& transfer) {
    switch (code) {
    case CURLE_HTTP2_STREAM:
        // Every error of a stream is described but this one.
        return isWhole(transfer) || transfer.error.front() == '\0';
    case CURLE_HTTP2:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
        return isWhole(transfer);
    default:
        return false;
    }
}

bool mayBeSentTo(const URL& url) {
    return url.scheme() == "https" || (url.scheme() == "http" && url.isLoopback());
}

void initialiseLibcurl() {
    static const CURLcode once = curl_global_init(CURL_GLOBAL_ALL);
    static_cast<void>(once);
}

}  // namespace

/// Shared by the client, its thread, and the stop at process exit.
class CurlHttpClient::Engine {
  public:
    explicit Engine(std::string certificateAuthorityFile);

    /// Starts the thread now: one that the worker started would inherit its low priority for good.
    static void begin(const std::shared_ptr<Engine>& self);

    static void start(const std::shared_ptr<Engine>& self, HttpRequest request, Completion completion);

    /// Ends all requests with an error, frees everything, and joins the thread.
    void close();

    /// Brings the thread to rest where it stands: nothing is completed or freed.
    void rest(Time deadline);

  private:
    enum class Stop : std::uint8_t { no, close, rest };
    /// Scheme, host and port.
    using Server = std::tuple<std::string, std::string, std::uint16_t>;

    void ensureThread(const std::shared_ptr<Engine>& self);
    void wake();

    void run() noexcept;
    void takeIncoming();
    void assign(Waiting& request);
    Lane& laneOf(const std::shared_ptr<const Plan>& plan);
    bool canAdmit() const;
    void admit();
    void begin(Waiting& request, Lane& lane);
    CURLcode prepare(Transfer& transfer) const;
    CURLcode setOptions(CURL* easy, Transfer& transfer) const;
    bool finishDone();
    static void finish(Transfer& transfer, CURLcode code);
    bool endOverdue();
    bool endCancelledWaiting(Time now);
    bool finishForgotten();
    bool isOverdue(Transfer& transfer, Time now);
    void recycle(Transfer& transfer);
    void tidy();
    std::chrono::milliseconds longestPause() const;
    void waitForWork();
    void endAll();
    [[noreturn]] void restForEver();
    static void complete(Waiting& request, std::optional<std::string> body,
                         std::optional<HttpResponse> response, std::optional<HttpError> error) noexcept;
    static void fail(Waiting& request, std::string_view description,
                     std::optional<HttpResponse> response = std::nullopt) noexcept;

    const std::string certificateAuthorityFile_;

    std::mutex mutex_;
    std::condition_variable resting_;
    std::deque<Waiting> incoming_;
    std::shared_ptr<const Plan> lastPlan_;
    std::optional<std::thread> thread_;
    std::thread::id threadId_;
    Stop stop_ = Stop::no;
    /// The thread does nothing any more, or has ended.
    bool rests_ = false;
    /// The thread waits for the network and nobody has woken it yet.
    bool waits_ = false;

    // The rest belongs to the thread, but that wake() may be called from any.
    MultiHandle multi_;
    TrustStore trust_;
    std::deque<Waiting> taken_;
    std::map<Server, Lane, std::less<>> lanes_;
    /// The plan that was assigned last, and where to: mostly that of the next request too.
    std::shared_ptr<const Plan> assignedPlan_;
    Lane* assignedLane_ = nullptr;
    std::list<Transfer> underWay_;
    std::list<Transfer> idle_;
    /// No deadline lies before this.
    Time nextDeadline_ = Time::max();
    /// Requests that wait in a lane and that somebody may cancel.
    std::size_t waitingCancellable_ = 0;
    /// Some request with a body has an answer that has begun and not ended.
    bool hasAnsweredPost_ = false;
};

CurlHttpClient::Engine::Engine(std::string certificateAuthorityFile)
    : certificateAuthorityFile_(std::move(certificateAuthorityFile)),
      multi_(curl_multi_init()) {
    if (!multi_) {
        throw std::bad_alloc();
    }
    CURLM* const multi = multi_.get();
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS, static_cast<long>(mostConnectionsPerServer));
    curl_multi_setopt(multi, CURLMOPT_MAX_CONCURRENT_STREAMS, static_cast<long>(mostStreamsPerServer));
}

void CurlHttpClient::Engine::begin(const std::shared_ptr<Engine>& self) {
    const std::scoped_lock lock(self->mutex_);
    self->ensureThread(self);
}

void CurlHttpClient::Engine::start(const std::shared_ptr<Engine>& self, HttpRequest request,
                                   Completion completion) {
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
        self->lastPlan_ = makePlan(request);
    }
    self->incoming_.push_back({self->lastPlan_, std::move(body), std::move(completion)});
    self->ensureThread(self);
    self->wake();
}

/// Called with the lock held. Should the system refuse a thread, the next request asks again.
void CurlHttpClient::Engine::ensureThread(const std::shared_ptr<Engine>& self) {
    if (thread_) {
        return;
    }
    // The thread holds the engine until it ends.
    thread_ = startBackgroundThread("vorna-http", ThreadPriority::normal, [self] { self->run(); });
    if (thread_) {
        threadId_ = thread_->get_id();
        stopAtProcessExit([weak = std::weak_ptr(self)](Time deadline) {
            if (const std::shared_ptr<Engine> engine = weak.lock()) {
                engine->rest(deadline);
            }
        });
    }
}

/// Called with the lock held.
void CurlHttpClient::Engine::wake() {
    if (std::exchange(waits_, false)) {
        curl_multi_wakeup(multi_.get());
    }
}

void CurlHttpClient::Engine::close() {
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

void CurlHttpClient::Engine::rest(Time deadline) {
    std::unique_lock lock(mutex_);
    stop_ = Stop::rest;
    if (threadId_ == std::thread::id() || threadId_ == std::this_thread::get_id()) {
        return;
    }
    wake();
    resting_.wait_until(lock, deadline, [this] { return rests_; });
}

void CurlHttpClient::Engine::run() noexcept {
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
        int running = 0;
        curl_multi_perform(multi_.get(), &running);
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

void CurlHttpClient::Engine::takeIncoming() {
    {
        const std::scoped_lock lock(mutex_);
        taken_.swap(incoming_);
    }
    // One by one, so that memory moves with the requests and is never held twice.
    for (; !taken_.empty(); taken_.pop_front()) {
        assign(taken_.front());
    }
}

void CurlHttpClient::Engine::assign(Waiting& request) {
    if (!mayBeSentTo(request.plan->url)) {
        fail(request, "Only https is sent, and http to loopback addresses");
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
        fail(request, outOfMemory);
    }
}

Lane& CurlHttpClient::Engine::laneOf(const std::shared_ptr<const Plan>& plan) {
    if (plan != assignedPlan_) {
        const URL& url = plan->url;
        assignedLane_ = &lanes_[Server{url.scheme(), url.host(), url.port()}];
        assignedPlan_ = plan;
    }
    return *assignedLane_;
}

bool CurlHttpClient::Engine::canAdmit() const {
    return std::any_of(lanes_.begin(), lanes_.end(),
                       [](const auto& entry) { return entry.second.canAdmit(); });
}

void CurlHttpClient::Engine::admit() {
    for (auto& [server, lane] : lanes_) {
        while (lane.canAdmit()) {
            Waiting& next = lane.waiting.front();
            waitingCancellable_ -= next.plan->stop.stop_possible() ? 1 : 0;
            begin(next, lane);
            lane.waiting.pop_front();
        }
    }
}

void CurlHttpClient::Engine::begin(Waiting& request, Lane& lane) {
    if (idle_.empty()) {
        try {
            idle_.emplace_front();
        } catch (const std::exception&) {
            fail(request, outOfMemory);
            return;
        }
        idle_.front().self = idle_.begin();
        idle_.front().easy.reset(curl_easy_init());
    }
    Transfer& transfer = idle_.front();
    CURL* const easy = transfer.easy.get();
    transfer.request = std::move(request);
    transfer.lane = &lane;
    if (easy == nullptr) {
        fail(transfer.request, outOfMemory);
        idle_.pop_front();
        return;
    }
    if (const CURLcode refused = prepare(transfer); refused != CURLE_OK) {
        fail(transfer.request, curl_easy_strerror(refused));
        idle_.pop_front();
        return;
    }
    const CURLMcode code = curl_multi_add_handle(multi_.get(), easy);
    if (code != CURLM_OK) {
        fail(transfer.request, curl_multi_strerror(code));
        idle_.pop_front();
        return;
    }
    transfer.deadline = std::chrono::steady_clock::now() + transfer.request.plan->timeout;
    nextDeadline_ = std::min(nextDeadline_, transfer.request.plan->nextLook(transfer.deadline));
    ++lane.underWay;
    underWay_.splice(underWay_.end(), idle_, transfer.self);
}

CURLcode CurlHttpClient::Engine::prepare(Transfer& transfer) const {
    CURL* const easy = transfer.easy.get();
    const Plan& plan = *transfer.request.plan;
    if (transfer.preparedFor != transfer.request.plan) {
        transfer.preparedFor.reset();
        curl_easy_reset(easy);
        if (const CURLcode code = setOptions(easy, transfer); code != CURLE_OK) {
            return code;
        }
        transfer.preparedFor = transfer.request.plan;
    }
    if (plan.method == HttpMethod::post) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(transfer.request.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, transfer.request.body.data());
    }
    transfer.sendings = 0;
    transfer.status = 0;
    transfer.headSize = 0;
    transfer.hasHead = false;
    transfer.headers.clear();
    transfer.body.clear();
    transfer.wholeSince.reset();
    transfer.refusal = nullptr;
    transfer.error.front() = '\0';
    return CURLE_OK;
}

/// An error when one of the options was refused that must not be missing.
CURLcode CurlHttpClient::Engine::setOptions(CURL* easy, Transfer& transfer) const {
    const Plan& plan = *transfer.request.plan;
    const bool secure = plan.url.scheme() == "https";
    CURLcode refused = CURLE_OK;
    const auto set = [&](CURLoption option, auto value) {
        const CURLcode code = curl_easy_setopt(easy, option, value);
        refused = refused == CURLE_OK ? code : refused;
    };
    set(CURLOPT_URL, plan.url.text().c_str());
    set(CURLOPT_PROTOCOLS_STR, secure ? "https" : "http");
    set(CURLOPT_REDIR_PROTOCOLS_STR, secure ? "https" : "http");
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!trust_.bundleFile.empty()) {
        set(CURLOPT_CAINFO, trust_.bundleFile.c_str());
        // A folder beside the file would add nothing, and keep libcurl from sharing the parsed file among
        // connections.
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    } else if (!trust_.hashedFolder.empty()) {
        set(CURLOPT_CAPATH, trust_.hashedFolder.c_str());
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
    // A name server that is silent holds up neither the other requests nor the end.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);

    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, mostRedirects);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, secure ? openSocket : openLoopbackSocket);
    curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, &transfer);
    if (secure) {
        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        // Rather wait for a connection that may carry many requests than open one more for each.
        curl_easy_setopt(easy, CURLOPT_PIPEWAIT, 1L);
    } else {
        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        curl_easy_setopt(easy, CURLOPT_NOPROXY, "*");
    }

    curl_easy_setopt(easy, CURLOPT_PROXY_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));

    curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, countSending);
    curl_easy_setopt(easy, CURLOPT_PREREQDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, receiveBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, receiveHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer.error.data());
    curl_easy_setopt(easy, CURLOPT_PRIVATE, &transfer);
    return refused;
}

bool CurlHttpClient::Engine::finishDone() {
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
        Transfer& transfer = *static_cast<Transfer*>(static_cast<void*>(context));

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
        finish(transfer, code);
        recycle(transfer);
    }
    return any;
}

void CurlHttpClient::Engine::finish(Transfer& transfer, CURLcode code) {
    std::optional<HttpResponse> response;
    if (transfer.hasHead) {
        response.emplace();
        response->url = std::move(transfer.url);
        response->statusCode = transfer.status;
        response->headers = std::move(transfer.headers);
    }
    if (response && (code == CURLE_OK || isAnsweredDespite(code, transfer))) {
        complete(transfer.request, std::move(transfer.body), std::move(response), std::nullopt);
        return;
    }
    std::string_view description = trimmed(transfer.error.data());
    if (transfer.refusal != nullptr) {
        description = transfer.refusal;
    } else if (code == CURLE_OK) {
        // libcurl takes what has come for the whole head when the connection ends within it.
        description = "The response's head was cut off";
    } else if (description.empty()) {
        description = curl_easy_strerror(code);
    }
    fail(transfer.request, description, std::move(response));
}

/// Ends what has been on the wire for too long, what could not get there, and what nobody wants any more.
bool CurlHttpClient::Engine::endOverdue() {
    const Time now = std::chrono::steady_clock::now();
    if (now < nextDeadline_) {
        return false;
    }
    nextDeadline_ = Time::max();
    bool any = endCancelledWaiting(now);
    for (auto next = underWay_.begin(); next != underWay_.end();) {
        Transfer& transfer = *next++;
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
        finish(transfer, CURLE_OPERATION_TIMEDOUT);
        recycle(transfer);
    }
    return any;
}

bool CurlHttpClient::Engine::endCancelledWaiting(Time now) {
    if (waitingCancellable_ == 0) {
        return false;
    }
    const std::size_t before = waitingCancellable_;
    for (auto& [server, lane] : lanes_) {
        std::erase_if(lane.waiting, [this](Waiting& request) {
            if (!request.plan->stop.stop_requested()) {
                return false;
            }
            fail(request, cancelled);
            --waitingCancellable_;
            return true;
        });
    }
    if (waitingCancellable_ > 0) {
        nextDeadline_ = now + cancellationInterval;
    }
    return waitingCancellable_ < before;
}

/// Where a server answers before the request is all sent, libcurl may sleep over the end of the HTTP/2
/// stream: until something else makes it look, or for good.
bool CurlHttpClient::Engine::finishForgotten() {
    constexpr std::chrono::milliseconds patience(200);
    bool any = false;
    hasAnsweredPost_ = false;
    for (auto next = underWay_.begin(); next != underWay_.end();) {
        Transfer& transfer = *next++;
        if (!transfer.hasHead || transfer.request.plan->method != HttpMethod::post) {
            continue;
        }
        hasAnsweredPost_ = true;
        if (!isWhole(transfer) || !isSent(transfer)) {
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
        finish(transfer, CURLE_OK);
        recycle(transfer);
    }
    return any;
}

bool CurlHttpClient::Engine::isOverdue(Transfer& transfer, Time now) {
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

void CurlHttpClient::Engine::complete(Waiting& request, std::optional<std::string> body,
                                      std::optional<HttpResponse> response,
                                      std::optional<HttpError> error) noexcept {
    try {
        request.completion(std::move(body), std::move(response), std::move(error));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): a completion must not throw
    } catch (...) {                    // NOLINT(bugprone-empty-catch)
    }
}

void CurlHttpClient::Engine::fail(Waiting& request, std::string_view description,
                                  std::optional<HttpResponse> response) noexcept {
    HttpError error;
    try {
        error.description = description;
    } catch (const std::exception&) {
        // Short enough to need no memory of its own.
        error.description = outOfMemory;
    }
    complete(request, std::nullopt, std::move(response), std::move(error));
}

void CurlHttpClient::Engine::recycle(Transfer& transfer) {
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
void CurlHttpClient::Engine::tidy() {
    if (!underWay_.empty()) {
        return;
    }
    while (idle_.size() > mostConnectionsPerServer) {
        idle_.pop_back();
    }
    constexpr std::size_t manyServers = 64;
    if (lanes_.size() > manyServers) {
        assignedPlan_.reset();
        lanes_.clear();
    }
}

std::chrono::milliseconds CurlHttpClient::Engine::longestPause() const {
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

void CurlHttpClient::Engine::waitForWork() {
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

void CurlHttpClient::Engine::endAll() {
    static constexpr const char* closed = "The HTTP client has been closed";
    for (Transfer& transfer : underWay_) {
        curl_multi_remove_handle(multi_.get(), transfer.easy.get());
        fail(transfer.request, closed);
    }
    underWay_.clear();
    idle_.clear();
    for (auto& [server, lane] : lanes_) {
        for (; !lane.waiting.empty(); lane.waiting.pop_front()) {
            fail(lane.waiting.front(), closed);
        }
    }
    lanes_.clear();
    {
        const std::scoped_lock lock(mutex_);
        taken_.swap(incoming_);
    }
    for (; !taken_.empty(); taken_.pop_front()) {
        fail(taken_.front(), closed);
    }
    multi_.reset();
}

void CurlHttpClient::Engine::restForEver() {
    {
        const std::scoped_lock lock(mutex_);
        rests_ = true;
    }
    resting_.notify_all();
    for (;;) {
        pause();
    }
}

CurlHttpClient::CurlHttpClient(std::string certificateAuthorityFile) {
    // Before any registration of a stop at exit: what libcurl's own libraries tear down at exit must outlast
    // our thread.
    initialiseLibcurl();
    engine_ = std::make_shared<Engine>(std::move(certificateAuthorityFile));
    Engine::begin(engine_);
}

CurlHttpClient::~CurlHttpClient() {
    engine_->close();
}

void CurlHttpClient::start(HttpRequest request, Completion completion) {
    Engine::start(engine_, std::move(request), std::move(completion));
}

}  // namespace vorna
