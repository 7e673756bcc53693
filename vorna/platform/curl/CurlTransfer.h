// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One request in flight, with as much of its answer as has arrived.

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/curl/CurlHandles.h>
#include <vorna/platform/curl/ServerLane.h>
#include <vorna/platform/curl/WaitingRequest.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// A handle of libcurl and everything about the request that it currently sends.
struct CurlTransfer {
    using Time = std::chrono::steady_clock::time_point;

    EasyHandle easy;
    std::list<CurlTransfer>::iterator self;
    WaitingRequest request;
    ServerLane* lane = nullptr;
    /// The plan that the handle's options were last set for; null if they must be set again.
    std::shared_ptr<const RequestPlan> configuredFor;

    /// How often the request was sent, including redirects and libcurl's own repetitions.
    long sendCount = 0;
    Time deadline;

    std::string url;
    int status = 0;
    std::size_t headSize = 0;
    bool hasHead = false;
    std::vector<HttpHeader> headers;
    std::string body;
    /// When the answer was first found complete although libcurl still waits.
    std::optional<Time> completeSince;
    /// Why we aborted the transfer; null if we did not.
    const char* abortReason = nullptr;
    std::array<char, CURL_ERROR_SIZE> error{};

    /// Clears the remains of an earlier answer.
    void reset();

    /// Completes the request with the answer, or with the reason why there is none.
    void finish(CURLcode code);

    /// Whether all bytes of the answer have arrived, as far as its headers give the length.
    bool isComplete() const;

    /// Whether the request's body has been sent.
    bool isSent() const;

    // Called by libcurl with the transfer as context.

    /// A connection is ready and the request is sent next.
    static int onSending(void* context, char*, char*, int, int) noexcept;
    static std::size_t receiveHeader(const char* bytes, std::size_t, std::size_t count,
                                     void* context) noexcept;
    static std::size_t receiveBody(const char* bytes, std::size_t, std::size_t count, void* context) noexcept;

  private:
    std::size_t abort(const char* reason) noexcept;
    void receiveHeaderLine(std::string_view line);
    bool isAnsweredDespite(CURLcode code) const;
};

}  // namespace vorna
