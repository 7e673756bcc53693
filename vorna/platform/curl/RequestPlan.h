// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Everything that requests of one kind have in common. All events share one, so that a waiting request costs
/// its body and a pointer.

#include <vorna/platform/HttpClient.h>
#include <vorna/platform/URL.h>
#include <vorna/platform/curl/CurlHandles.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <stop_token>
#include <vector>

namespace vorna {

struct RequestPlan {
    using Time = std::chrono::steady_clock::time_point;

    /// How often cancellable requests are checked for cancellation.
    static constexpr std::chrono::milliseconds cancellationInterval{200};

    URL url;
    HttpMethod method = HttpMethod::get;
    std::vector<HttpHeader> headers;
    std::chrono::milliseconds timeout{};
    std::size_t responseLimit = 0;
    std::stop_token stop;
    /// Whether a stop was possible at the start: a token loses that when its source is destroyed.
    bool isCancellable = false;
    /// The headers in libcurl's form.
    HeaderList list;

    static std::shared_ptr<const RequestPlan> of(const HttpRequest& request);

    /// Whether the request differs from those of this plan only in its body.
    bool serves(const HttpRequest& request) const;

    /// Whether the scheme is allowed: https, or http to a loopback address.
    bool isAllowed() const;

    /// When a request with that deadline must be checked next.
    Time nextCheck(Time deadline) const;
};

}  // namespace vorna
