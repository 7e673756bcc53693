// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One request on its way, with the answer as far as it has come.

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/curl/CurlHandles.h>
#include <vorna/platform/curl/ServerLane.h>
#include <vorna/platform/curl/TrustStore.h>
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

/// A handle of libcurl with what belongs to the request that it carries at present.
struct CurlTransfer {
    using Time = std::chrono::steady_clock::time_point;

    EasyHandle easy;
    std::list<CurlTransfer>::iterator self;
    WaitingRequest request;
    ServerLane* lane = nullptr;
    /// The plan that the handle's options were last set for.
    std::shared_ptr<const RequestPlan> preparedFor;

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

    /// Makes the handle and the rest ready for `request`. An error when libcurl refuses what must not be
    /// missing.
    CURLcode prepare(const TrustStore& trust);

    /// Ends the request with the answer, or with what went wrong.
    void finish(CURLcode code);

    /// Whether an answer has come to its last byte, as far as its head tells how many there are.
    bool isWhole() const;

    bool isSent() const;

    // What libcurl calls, with the transfer for a context.

    /// A connection stands and the request is next.
    static int countSending(void* context, char*, char*, int, int) noexcept;
    static std::size_t receiveHeader(const char* bytes, std::size_t, std::size_t count,
                                     void* context) noexcept;
    static std::size_t receiveBody(const char* bytes, std::size_t, std::size_t count, void* context) noexcept;

  private:
    std::size_t refuse(const char* reason) noexcept;
    void receiveHeaderLine(std::string_view line);
    bool isAnsweredDespite(CURLcode code) const;
};

}  // namespace vorna
