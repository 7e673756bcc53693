// SPDX-License-Identifier: Apache-2.0
#include <bench/support/CountingHttpClient.h>

#include <bench/support/Stopwatch.h>

#include <optional>
#include <utility>

namespace vorna::bench {

void SwallowingHttpClient::start(HttpRequest, Completion) {
    swallowed_.fetch_add(1, std::memory_order_relaxed);
}

void CountingHttpClient::start(HttpRequest request, Completion completion) {
    // The configuration request of Init does not count.
    const bool counts = request.url.text().ends_with("/v1/event");
    if (counts) {
        const std::scoped_lock lock(mutex_);
        if (started_++ == 0) {
            round_.began = nanosecondsNow();
        }
        if (keepsBodies_) {
            bodies_.push_back(request.body);
        }
    }
    client_->start(std::move(request),
                   [this, counts, completion = std::move(completion)](auto body, auto response, auto error) {
                       if (counts) {
                           count(response, error);
                       }
                       completion(std::move(body), std::move(response), std::move(error));
                   });
}

void CountingHttpClient::count(const std::optional<HttpResponse>& response,
                               const std::optional<HttpError>& error) {
    const std::scoped_lock lock(mutex_);
    if (error) {
        round_.problem = error->description;
    } else if (!response || response->statusCode != 200) {
        round_.problem = debugDescription(response);
    } else {
        ++round_.delivered;
    }
    if (++ended_ == expected_) {
        round_.ended = nanosecondsNow();
        changed_.notify_all();
    }
}

void CountingHttpClient::beginRound(std::uint64_t requests, bool keepBodies) {
    const std::scoped_lock lock(mutex_);
    keepsBodies_ = keepBodies;
    bodies_.clear();
    expected_ = requests;
    started_ = 0;
    ended_ = 0;
    round_ = {};
}

CountingHttpClient::Round CountingHttpClient::waitForRound() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return ended_ >= expected_; });
    return round_;
}

}  // namespace vorna::bench
