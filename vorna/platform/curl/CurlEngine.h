// SPDX-License-Identifier: Apache-2.0
#pragma once

/// libcurl's multi handle and the thread that drives it.

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/curl/CurlHandles.h>
#include <vorna/platform/curl/CurlTransfer.h>
#include <vorna/platform/curl/RequestPlan.h>
#include <vorna/platform/curl/ServerLane.h>
#include <vorna/platform/curl/TrustStore.h>
#include <vorna/platform/curl/WaitingRequest.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>

namespace vorna {

/// Shared by the client, its thread, and the stop at process exit.
class CurlEngine {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Trusts the authorities in the PEM file, or those of the system when the name is empty.
    explicit CurlEngine(std::string certificateAuthorityFile);

    /// Starts the thread now: one that the worker started would inherit its low priority for good.
    static void begin(const std::shared_ptr<CurlEngine>& self);

    static void start(const std::shared_ptr<CurlEngine>& self, HttpRequest request,
                      HttpClient::Completion completion);

    /// Ends all requests with an error, frees everything, and joins the thread.
    void close();

    /// Brings the thread to rest where it stands: nothing is completed or freed. Waits for that until the
    /// deadline, and somewhat longer while libcurl is at work.
    void rest(Time deadline);

  private:
    enum class Stop : std::uint8_t { no, close, rest };
    /// Scheme, host and port.
    using Server = std::tuple<std::string, std::string, std::uint16_t>;

    void ensureThread(const std::shared_ptr<CurlEngine>& self);
    void wake();

    void run() noexcept;
    void perform();
    void takeIncoming();
    void assign(WaitingRequest& request);
    ServerLane& laneOf(const std::shared_ptr<const RequestPlan>& plan);
    bool canAdmit() const;
    void admit();
    void begin(WaitingRequest& request, ServerLane& lane);
    bool finishDone();
    bool endOverdue();
    bool endCancelledWaiting(Time now);
    bool finishForgotten();
    bool isOverdue(CurlTransfer& transfer, Time now);
    void recycle(CurlTransfer& transfer);
    void tidy();
    std::chrono::milliseconds longestPause() const;
    void waitForWork();
    void endAll();
    void restIfExiting();
    [[noreturn]] void restForEver();

    const std::string certificateAuthorityFile_;

    std::mutex mutex_;
    std::condition_variable resting_;
    std::deque<WaitingRequest> incoming_;
    std::shared_ptr<const RequestPlan> lastPlan_;
    std::optional<std::thread> thread_;
    std::thread::id threadId_;
    Stop stop_ = Stop::no;
    /// The thread does nothing any more, or has ended.
    bool rests_ = false;
    /// The thread waits for the network and nobody has woken it yet.
    bool waits_ = false;
    /// libcurl works for the thread, with what is torn down when the process ends.
    bool isInLibcurl_ = false;

    // The rest belongs to the thread, but that wake() may be called from any.
    MultiHandle multi_;
    TrustStore trust_;
    std::deque<WaitingRequest> taken_;
    std::map<Server, ServerLane, std::less<>> lanes_;
    /// The plan that was assigned last, and where to: mostly that of the next request too.
    std::shared_ptr<const RequestPlan> assignedPlan_;
    ServerLane* assignedLane_ = nullptr;
    std::list<CurlTransfer> underWay_;
    std::list<CurlTransfer> idle_;
    /// No deadline lies before this.
    Time nextDeadline_ = Time::max();
    /// Requests that wait in a lane and that somebody may cancel.
    std::size_t waitingCancellable_ = 0;
    /// Some request with a body has an answer that has begun and not ended.
    bool hasAnsweredPost_ = false;
};

}  // namespace vorna
