// SPDX-License-Identifier: Apache-2.0
#pragma once

/// HTTP clients that a measurement puts in the place of, or around, the real one.

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

/// Swallows requests without an answer, and counts them.
class SwallowingHttpClient final : public HttpClient {
  public:
    void start(HttpRequest request, Completion completion) override;

    std::uint64_t swallowed() const { return swallowed_.load(std::memory_order_relaxed); }

  private:
    std::atomic<std::uint64_t> swallowed_ = 0;
};

/// Passes requests on and counts the POST requests and their ends. It outlives its requests.
class CountingHttpClient final : public HttpClient {
  public:
    explicit CountingHttpClient(std::shared_ptr<HttpClient> client) : client_(std::move(client)) {}

    void start(HttpRequest request, Completion completion) override;

    /// What came of one round of requests.
    struct Round {
        /// When the first was handed over and when the last has ended.
        std::int64_t began = 0;
        std::int64_t ended = 0;
        /// How many had a status of 200.
        std::uint64_t delivered = 0;
        /// Why others had not; the last reason.
        std::string problem;
    };

    /// Counts anew; nothing is under way. The bodies of the round are kept if wanted.
    void beginRound(std::uint64_t requests, bool keepBodies = false);

    /// Waits until the round's last request has ended.
    Round waitForRound();

    /// Those kept in the last round.
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
