// SPDX-License-Identifier: Apache-2.0
#pragma once

/// What requests of one kind have in common. All events share one such value, so that a waiting request costs
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

    /// How often is looked whether somebody has cancelled a request, while there is one that may be.
    static constexpr std::chrono::milliseconds cancellationInterval{200};

    URL url;
    HttpMethod method = HttpMethod::get;
    std::vector<HttpHeader> headers;
    std::chrono::milliseconds timeout{};
    std::size_t responseLimit = 0;
    std::stop_token stop;
    /// The headers as libcurl takes them.
    HeaderList list;

    static std::shared_ptr<const RequestPlan> of(const HttpRequest& request);

    /// Whether the request differs from those of this plan in nothing but its body.
    bool serves(const HttpRequest& request) const;

    /// Https, and http to loopback addresses.
    bool mayBeSent() const;

    /// When a request of this kind is to be looked at again.
    Time nextLook(Time deadline) const;
};

}  // namespace vorna
