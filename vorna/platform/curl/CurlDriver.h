// SPDX-License-Identifier: Apache-2.0
#pragma once

/// libcurl's multi handle and the thread that drives it.

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/ServiceThread.h>
#include <vorna/platform/curl/Admission.h>
#include <vorna/platform/curl/CurlHandles.h>
#include <vorna/platform/curl/CurlTransfer.h>
#include <vorna/platform/curl/RequestPlan.h>
#include <vorna/platform/curl/TrustStore.h>
#include <vorna/platform/curl/WaitingRequest.h>

#include <chrono>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace vorna {

/// Shared by the client and the thread. When the process exits, the thread goes on with what it was given
/// before, for the grace at most, and then parks in place: nothing is completed or freed any more.
class CurlDriver {
  public:
    using Time = std::chrono::steady_clock::time_point;

    /// Trusts the authorities in the PEM file, or the system's if the name is empty.
    CurlDriver(std::string certificateAuthorityFile, std::chrono::milliseconds exitGrace);

    /// Starts the thread in advance: started by the worker, it would inherit the worker's low priority
    /// permanently.
    static void startThread(const std::shared_ptr<CurlDriver>& self);

    static void start(const std::shared_ptr<CurlDriver>& self, HttpRequest request,
                      HttpClient::Completion completion);

    /// Ends all requests with an error, frees everything, and joins the thread.
    void close();

  private:
    void ensureThread(const std::shared_ptr<CurlDriver>& self);
    void wake();

    void run(ServiceThread::Self& self);
    bool goesOn();
    bool isUnderWay();
    void loadTrust();
    void perform();
    void queueIncoming();
    void queue(WaitingRequest& request);
    void startAdmitted();
    bool startTransfer(Admission::Admitted& admitted);
    bool finishCompleted();
    bool endOverdue();
    bool endCancelledWaiting(Time now);
    bool finishStalled();
    bool isOverdue(CurlTransfer& transfer, Time now);
    void end(CurlTransfer& transfer, CURLcode code);
    void recycle(CurlTransfer& transfer);
    void trim();
    std::chrono::milliseconds pollTimeout() const;
    void waitForWork();
    void failAll();
    void parkIfExiting();

    const std::string certificateAuthorityFile_;
    const std::chrono::milliseconds exitGrace_;

    std::mutex mutex_;
    std::deque<WaitingRequest> incoming_;
    std::shared_ptr<const RequestPlan> lastPlan_;
    std::optional<ServiceThread> thread_;
    bool isClosed_ = false;
    /// The thread is in curl_multi_poll, or about to be, and has not been woken yet.
    bool isWaiting_ = false;

    // The rest belongs to the thread, except that wake() may be called from any.
    ServiceThread::Self* self_ = nullptr;
    MultiHandle multi_;
    TrustStore trust_;
    std::deque<WaitingRequest> batch_;
    Admission admission_;
    std::list<CurlTransfer> underWay_;
    std::list<CurlTransfer> idle_;
    /// No deadline is earlier than this.
    Time nextDeadline_ = Time::max();
    /// The answer to a request with a body has begun but not ended.
    bool hasAnsweredPost_ = false;
};

}  // namespace vorna
