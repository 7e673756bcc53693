#include <vorna/platform/curl/CurlHttpClient.h>

#include <vorna/platform/BackgroundThread.h>
#include <vorna/platform/ProcessExit.h>
#include <vorna/platform/curl/TrustStore.h>

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <exception>
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

constexpr long mostConnectionsPerServer = 6;
/// As many as servers commonly allow on one HTTP/2 connection.
constexpr std::size_t mostStreamsPerServer = 128;
constexpr long mostRedirects = 10;

struct ListDeleter {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, ListDeleter>;

struct EasyDeleter {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
};
using EasyHandle = std::unique_ptr<CURL, EasyDeleter>;

/// What requests of one kind have in common. All events share one such value, so that a waiting request costs
/// its body and a pointer.
struct Plan {
    URL url;
    HttpMethod method = HttpMethod::get;
    std::vector<HttpHeader> headers;
    std::chrono::milliseconds timeout{};
    std::size_t responseLimit = 0;
    HeaderList list;

    bool serves(const HttpRequest& request) const {
        return url == request.url && method == request.method && headers == request.headers &&
               timeout == request.timeout && responseLimit == request.responseLimit;
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
                                            request.responseLimit, nullptr});
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
    /// Learned from the server's last answer.
    bool multiplexes = false;

    std::size_t room() const {
        const std::size_t most =
            multiplexes ? mostStreamsPerServer : static_cast<std::size_t>(mostConnectionsPerServer);
        return underWay < most ? most - underWay : 0;
    }
};

/// A handle of libcurl with what belongs to the request that it carries at present.
struct Transfer {
    EasyHandle easy;
    Waiting request;
    Lane* lane = nullptr;
    std::string body;
    std::vector<HttpHeader> headers;
    bool tooLarge = false;
    /// The plan that the handle's options were last set for.
    std::shared_ptr<const Plan> preparedFor;
    std::array<char, CURL_ERROR_SIZE> error{};
};

std::size_t receiveBody(const char* bytes, std::size_t, std::size_t count, void* context) {
    Transfer& transfer = *static_cast<Transfer*>(context);
    if (count > transfer.request.plan->responseLimit - transfer.body.size()) {
        transfer.tooLarge = true;
        return CURL_WRITEFUNC_ERROR;
    }
    transfer.body.append(bytes, count);
    return count;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::size_t receiveHeader(const char* bytes, std::size_t, std::size_t count, void* context) {
    Transfer& transfer = *static_cast<Transfer*>(context);
    const std::string_view line(bytes, count);
    if (line.starts_with("HTTP/")) {
        // The head of a further answer: after a redirect, say.
        transfer.headers.clear();
        return count;
    }
    const std::size_t colon = line.find(':');
    if (colon != std::string_view::npos) {
        transfer.headers.push_back(
            {std::string(trimmed(line.substr(0, colon))), std::string(trimmed(line.substr(colon + 1)))});
    }
    return count;
}

bool isLoopback(const sockaddr& address) {
    if (address.sa_family == AF_INET) {
        const auto& ip = reinterpret_cast<const sockaddr_in&>(address);
        return (ntohl(ip.sin_addr.s_addr) >> 24U) == 127;
    }
    return address.sa_family == AF_INET6 &&
           IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
}

/// Without TLS nothing leaves this machine, whatever the name "localhost" or a redirect resolves to.
curl_socket_t openLoopbackSocket(void*, curlsocktype, curl_sockaddr* address) {
    if (!isLoopback(address->addr)) {
        return CURL_SOCKET_BAD;
    }
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address) {
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
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
    explicit Engine(std::string certificateAuthorityFile)
        : certificateAuthorityFile_(std::move(certificateAuthorityFile)) {}

    static void start(const std::shared_ptr<Engine>& self, HttpRequest request, Completion completion);

    /// Ends all requests with an error, frees everything, and joins the thread.
    void close();

    /// Brings the thread to rest where it stands: nothing is completed or freed.
    void rest(std::chrono::steady_clock::time_point deadline);

  private:
    enum class Stop : std::uint8_t { no, close, rest };

    void run();
    std::deque<Waiting> takeIncoming();
    void admit();
    void begin(Waiting request, Lane& lane);
    void prepare(Transfer& transfer);
    void finish(Transfer& transfer, CURLcode code);
    void recycle(std::unique_ptr<Transfer> transfer);
    bool finishDone();
    void waitForWork();
    void endAll();
    [[noreturn]] void restForEver();
    Lane& laneOf(const URL& url);
    static void complete(Waiting& request, std::optional<std::string> body,
                         std::optional<HttpResponse> response, std::optional<HttpError> error);

    const std::string certificateAuthorityFile_;

    std::mutex mutex_;
    std::condition_variable resting_;
    std::deque<Waiting> incoming_;
    std::shared_ptr<const Plan> lastPlan_;
    std::optional<std::thread> thread_;
    bool threadRefused_ = false;
    Stop stop_ = Stop::no;
    bool rests_ = false;
    /// The handle to wake while the thread waits for the network; null while it does not.
    CURLM* waitingOn_ = nullptr;

    // The rest belongs to the thread.
    CURLM* multi_ = nullptr;
    TrustStore trust_;
    std::map<std::tuple<std::string, std::string, std::uint16_t>, Lane> lanes_;
    std::map<CURL*, std::unique_ptr<Transfer>> underWay_;
    std::vector<std::unique_ptr<Transfer>> idle_;
};

void CurlHttpClient::Engine::start(const std::shared_ptr<Engine>& self, HttpRequest request,
                                   Completion completion) {
    std::string body = std::move(request.body);
    // A body may wait long and in large numbers; room to grow would be waste.
    if (body.capacity() > body.size() + body.size() / 16) {
        body.shrink_to_fit();
    }
    const std::scoped_lock lock(self->mutex_);
    if (self->stop_ != Stop::no || processIsExiting()) {
        return;
    }
    if (!self->lastPlan_ || !self->lastPlan_->serves(request)) {
        self->lastPlan_ = makePlan(request);
    }
    self->incoming_.push_back({self->lastPlan_, std::move(body), std::move(completion)});
    if (!self->thread_ && !self->threadRefused_) {
        // The thread holds the engine until it ends.
        self->thread_ = startBackgroundThread("vorna-http", ThreadPriority::normal, [self] { self->run(); });
        self->threadRefused_ = !self->thread_;
        if (self->thread_) {
            stopAtProcessExit([weak = std::weak_ptr(self)](std::chrono::steady_clock::time_point deadline) {
                if (const std::shared_ptr<Engine> engine = weak.lock()) {
                    engine->rest(deadline);
                }
            });
        }
    }
    if (self->waitingOn_ != nullptr) {
        curl_multi_wakeup(self->waitingOn_);
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
        if (waitingOn_ != nullptr) {
            curl_multi_wakeup(waitingOn_);
        }
    }
    if (!thread) {
        return;
    }
    if (thread->get_id() == std::this_thread::get_id() || processIsExiting()) {
        thread->detach();
    } else {
        thread->join();
    }
}

void CurlHttpClient::Engine::rest(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    stop_ = Stop::rest;
    if (!thread_ || thread_->get_id() == std::this_thread::get_id()) {
        return;
    }
    if (waitingOn_ != nullptr) {
        curl_multi_wakeup(waitingOn_);
    }
    resting_.wait_until(lock, deadline, [this] { return rests_; });
}

void CurlHttpClient::Engine::run() {
    multi_ = curl_multi_init();
    if (certificateAuthorityFile_.empty()) {
        trust_ = systemTrustStore();
    } else {
        trust_.bundleFile = certificateAuthorityFile_;
    }
    curl_multi_setopt(multi_, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
    curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, mostConnectionsPerServer);
    curl_multi_setopt(multi_, CURLMOPT_MAX_CONCURRENT_STREAMS, static_cast<long>(mostStreamsPerServer));

    for (;;) {
        {
            const std::scoped_lock lock(mutex_);
            if (stop_ == Stop::close) {
                break;
            }
        }
        for (Waiting& request : takeIncoming()) {
            Lane& lane = laneOf(request.plan->url);
            lane.waiting.push_back(std::move(request));
        }
        admit();
        int running = 0;
        curl_multi_perform(multi_, &running);
        if (!finishDone()) {
            waitForWork();
        }
    }
    endAll();
}

std::deque<Waiting> CurlHttpClient::Engine::takeIncoming() {
    std::unique_lock lock(mutex_);
    if (stop_ == Stop::rest) {
        lock.unlock();
        restForEver();
    }
    return std::exchange(incoming_, {});
}

Lane& CurlHttpClient::Engine::laneOf(const URL& url) {
    return lanes_[{url.scheme(), url.host(), url.port()}];
}

void CurlHttpClient::Engine::admit() {
    for (auto& [server, lane] : lanes_) {
        while (!lane.waiting.empty() && lane.room() > 0) {
            Waiting request = std::move(lane.waiting.front());
            lane.waiting.pop_front();
            if (mayBeSentTo(request.plan->url)) {
                begin(std::move(request), lane);
            } else {
                complete(request, std::nullopt, std::nullopt,
                         HttpError{"Only https is sent, and http to loopback addresses: " +
                                   request.plan->url.text()});
            }
        }
    }
}

void CurlHttpClient::Engine::begin(Waiting request, Lane& lane) {
    std::unique_ptr<Transfer> transfer;
    if (idle_.empty()) {
        transfer = std::make_unique<Transfer>();
        transfer->easy.reset(curl_easy_init());
    } else {
        transfer = std::move(idle_.back());
        idle_.pop_back();
    }
    transfer->request = std::move(request);
    transfer->lane = &lane;
    CURL* const easy = transfer->easy.get();
    if (easy == nullptr) {
        complete(transfer->request, std::nullopt, std::nullopt, HttpError{"Out of memory"});
        return;
    }
    prepare(*transfer);
    const CURLMcode code = curl_multi_add_handle(multi_, easy);
    if (code != CURLM_OK) {
        complete(transfer->request, std::nullopt, std::nullopt, HttpError{curl_multi_strerror(code)});
        return;
    }
    ++lane.underWay;
    underWay_.emplace(easy, std::move(transfer));
}

void CurlHttpClient::Engine::prepare(Transfer& transfer) {
    CURL* const easy = transfer.easy.get();
    const Plan& plan = *transfer.request.plan;
    if (transfer.preparedFor != transfer.request.plan) {
        transfer.preparedFor = transfer.request.plan;
        const bool secure = plan.url.scheme() == "https";
        curl_easy_reset(easy);
        curl_easy_setopt(easy, CURLOPT_URL, plan.url.text().c_str());
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
        curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(plan.timeout.count()));
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");

        curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, secure ? "https" : "http");
        curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, secure ? "https" : "http");
        curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
        curl_easy_setopt(easy, CURLOPT_MAXREDIRS, mostRedirects);
        curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, secure ? openSocket : openLoopbackSocket);
        if (!secure) {
            curl_easy_setopt(easy, CURLOPT_NOPROXY, "*");
        }

        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        // Rather wait for a connection that may carry many requests than open one more for each.
        curl_easy_setopt(easy, CURLOPT_PIPEWAIT, 1L);
        curl_easy_setopt(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
        if (!trust_.bundleFile.empty()) {
            curl_easy_setopt(easy, CURLOPT_CAINFO, trust_.bundleFile.c_str());
        }
        if (!trust_.hashedFolder.empty() || !certificateAuthorityFile_.empty()) {
            curl_easy_setopt(easy, CURLOPT_CAPATH,
                             trust_.hashedFolder.empty() ? nullptr : trust_.hashedFolder.c_str());
        }

        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, receiveBody);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
        curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, receiveHeader);
        curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer);
        curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer.error.data());
        curl_easy_setopt(easy, CURLOPT_PRIVATE, &transfer);
    }
    if (plan.method == HttpMethod::post) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(transfer.request.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, transfer.request.body.data());
    }
    transfer.body.clear();
    transfer.headers.clear();
    transfer.tooLarge = false;
    transfer.error.front() = '\0';
}

bool CurlHttpClient::Engine::finishDone() {
    bool any = false;
    int left = 0;
    while (const CURLMsg* const message = curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        any = true;
        CURL* const easy = message->easy_handle;
        const CURLcode code = message->data.result;
        auto node = underWay_.extract(easy);
        Transfer& transfer = *node.mapped();
        --transfer.lane->underWay;
        long version = 0;
        if (curl_easy_getinfo(easy, CURLINFO_HTTP_VERSION, &version) == CURLE_OK && version != 0) {
            transfer.lane->multiplexes = version >= CURL_HTTP_VERSION_2_0;
        }
        finish(transfer, code);
        curl_multi_remove_handle(multi_, easy);
        recycle(std::move(node.mapped()));
    }
    return any;
}

void CurlHttpClient::Engine::finish(Transfer& transfer, CURLcode code) {
    CURL* const easy = transfer.easy.get();
    std::optional<HttpResponse> response;
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    if (status != 0) {
        char* url = nullptr;
        curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &url);
        response = HttpResponse{url == nullptr ? transfer.request.plan->url.text() : std::string(url),
                                static_cast<int>(status), std::move(transfer.headers)};
    }
    if (code == CURLE_OK) {
        complete(transfer.request, std::move(transfer.body), std::move(response), std::nullopt);
        return;
    }
    HttpError error;
    if (transfer.tooLarge) {
        error.description = "The response is larger than " +
                            std::to_string(transfer.request.plan->responseLimit) + " bytes";
    } else {
        error.description = trimmed(transfer.error.data());
        if (error.description.empty()) {
            error.description = curl_easy_strerror(code);
        }
    }
    complete(transfer.request, std::nullopt, std::move(response), std::move(error));
}

void CurlHttpClient::Engine::complete(Waiting& request, std::optional<std::string> body,
                                      std::optional<HttpResponse> response, std::optional<HttpError> error) {
    try {
        request.completion(std::move(body), std::move(response), std::move(error));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): a completion must not throw
    } catch (...) {                    // NOLINT(bugprone-empty-catch)
    }
}

void CurlHttpClient::Engine::recycle(std::unique_ptr<Transfer> transfer) {
    transfer->request.body = {};
    transfer->request.completion = nullptr;
    transfer->lane = nullptr;
    constexpr std::size_t worthKeeping = 4096;
    if (transfer->body.capacity() > worthKeeping) {
        transfer->body = {};
    }
    idle_.push_back(std::move(transfer));
}

void CurlHttpClient::Engine::waitForWork() {
    {
        const std::scoped_lock lock(mutex_);
        if (stop_ != Stop::no || !incoming_.empty()) {
            return;
        }
        waitingOn_ = multi_;
    }
    // A burst is over: its handles, with their buffers, are worth more to the host than to us.
    if (underWay_.empty() && idle_.size() > static_cast<std::size_t>(mostConnectionsPerServer)) {
        idle_.resize(static_cast<std::size_t>(mostConnectionsPerServer));
    }
    constexpr int longest = 60'000;
    curl_multi_poll(multi_, nullptr, 0, longest, nullptr);
    const std::scoped_lock lock(mutex_);
    waitingOn_ = nullptr;
}

void CurlHttpClient::Engine::endAll() {
    const HttpError closed{"The HTTP client has been closed"};
    for (auto& [easy, transfer] : underWay_) {
        curl_multi_remove_handle(multi_, easy);
        complete(transfer->request, std::nullopt, std::nullopt, closed);
    }
    underWay_.clear();
    idle_.clear();
    for (auto& [server, lane] : lanes_) {
        for (Waiting& request : std::exchange(lane.waiting, {})) {
            complete(request, std::nullopt, std::nullopt, closed);
        }
    }
    lanes_.clear();
    std::deque<Waiting> incoming;
    {
        const std::scoped_lock lock(mutex_);
        incoming.swap(incoming_);
    }
    for (Waiting& request : incoming) {
        complete(request, std::nullopt, std::nullopt, closed);
    }
    curl_multi_cleanup(multi_);
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
}

CurlHttpClient::~CurlHttpClient() {
    engine_->close();
}

void CurlHttpClient::start(HttpRequest request, Completion completion) {
    Engine::start(engine_, std::move(request), std::move(completion));
}

}  // namespace vorna
