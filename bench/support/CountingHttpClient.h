// SPDX-License-Identifier: Apache-2.0
#pragma once

/// HTTP clients that replace or wrap the real one in measurements.

#include <vorna/platform/HttpClient.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace vorna::bench {

/// Counts requests and never answers them.
class SwallowingHttpClient final : public HttpClient {
  public:
    void start(HttpRequest request, Completion completion) override;

    std::uint64_t swallowed() const { return swallowed_.load(std::memory_order_relaxed); }

  private:
    std::atomic<std::uint64_t> swallowed_ = 0;
};

/// Forwards requests and counts POST requests and their completions. It must outlive its requests.
class CountingHttpClient final : public HttpClient {
  public:
    explicit CountingHttpClient(std::shared_ptr<HttpClient> client) : client_(std::move(client)) {}

    void start(HttpRequest request, Completion completion) override;

    /// Outcome of one round of requests.
    struct Round {
        /// When the first request was handed over and the last one completed.
        std::int64_t began = 0;
        std::int64_t ended = 0;
        /// Requests answered 200.
        std::uint64_t delivered = 0;
        /// The latest reason for anything else.
        std::string problem;
    };

    /// Resets the counters; nothing may be in flight. Keeps the round's bodies if asked to.
    void beginRound(std::uint64_t requests, bool keepBodies = false);

    /// Waits for the round's last request to complete.
    Round waitForRound();

    /// The bodies kept in the last round.
    const std::vector<std::string>& bodies() const { return bodies_; }

  private:
    void count(const std::optional<HttpResponse>& response, const std::optional<HttpError>& error);

    const std::shared_ptr<HttpClient> client_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool keepsBodies_ = false;
    std::uint64_t expected_ = 0;
    std::uint64_t started_ = 0;
    std::uint64_t ended_ = 0;
    Round round_;
    std::vector<std::string> bodies_;
};

}  // namespace vorna::bench
