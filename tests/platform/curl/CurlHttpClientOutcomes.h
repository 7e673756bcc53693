// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The outcomes of a test's requests.

#include <vorna/platform/HttpClient.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {

/// How one request ended.
struct HttpOutcome {
    std::optional<std::string> body;
    std::optional<HttpResponse> response;
    std::optional<HttpError> error;
    std::thread::id thread;

    int status() const { return response ? response->statusCode : 0; }

    std::string errorText() const { return error ? error->description : "no error"; }

    /// Returns the first header of that name; std::nullopt if there is none.
    std::optional<std::string> header(std::string_view name) const {
        if (response) {
            for (const HttpHeader& header : response->headers) {
                if (header.name == name) {
                    return header.value;
                }
            }
        }
        return std::nullopt;
    }
};

/// Collects outcomes by request. Must outlive the client that calls its completions.
class HttpOutcomes {
  public:
    /// Returns the completion of the next request.
    HttpClient::Completion next() {
        const std::scoped_lock lock(mutex_);
        const std::size_t place = outcomes_.size();
        outcomes_.emplace_back();
        return [this, place](std::optional<std::string> body, std::optional<HttpResponse> response,
                             std::optional<HttpError> error) {
            const std::scoped_lock completing(mutex_);
            outcomes_[place].push_back(
                {std::move(body), std::move(response), std::move(error), std::this_thread::get_id()});
            ++count_;
            changed_.notify_all();
        };
    }

    /// False if not all requests are complete within a generous time.
    bool waitForAll() const {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::minutes(2),
                                 [this] { return count_ >= outcomes_.size(); });
    }

    bool waitFor(std::size_t count) const {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::minutes(2), [&] { return count_ >= count; });
    }

    /// How many requests are complete.
    std::size_t count() const {
        const std::scoped_lock lock(mutex_);
        return count_;
    }

    /// The outcomes of each request, in order. Any number but one is a fault of the client.
    std::vector<std::vector<HttpOutcome>> all() const {
        const std::scoped_lock lock(mutex_);
        return outcomes_;
    }

    std::size_t countWithStatus(int status) const {
        return countIf(
            [status](const HttpOutcome& outcome) { return !outcome.error && outcome.status() == status; });
    }

    std::size_t countWithError() const {
        return countIf([](const HttpOutcome& outcome) { return outcome.error.has_value(); });
    }

    /// The first error, for a message.
    std::string firstError() const {
        const std::scoped_lock lock(mutex_);
        for (const auto& outcomes : outcomes_) {
            for (const HttpOutcome& outcome : outcomes) {
                if (outcome.error) {
                    return outcome.errorText();
                }
            }
        }
        return "no error";
    }

  private:
    template <typename Predicate>
    std::size_t countIf(Predicate predicate) const {
        const std::scoped_lock lock(mutex_);
        std::size_t count = 0;
        for (const auto& outcomes : outcomes_) {
            count += outcomes.size() == 1 && predicate(outcomes.front()) ? 1U : 0U;
        }
        return count;
    }

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<std::vector<HttpOutcome>> outcomes_;
    std::size_t count_ = 0;
};

inline HttpRequest getting(std::string_view url) {
    return {.url = URL::parse(url).value(), .headers = {}, .body = {}};
}

inline HttpRequest posting(std::string_view url, std::string body) {
    return {.url = URL::parse(url).value(),
            .method = HttpMethod::post,
            .headers = {{"Content-Type", "application/json"}},
            .body = std::move(body)};
}

/// Starts the request and waits for its outcome, which is empty if the request never ended.
inline HttpOutcome fetch(HttpClient& client, HttpRequest request) {
    // Not on the stack: the completion may be called after the wait has timed out.
    const auto outcomes = std::make_shared<HttpOutcomes>();
    client.start(std::move(request),
                 [outcomes, complete = outcomes->next()](auto body, auto response, auto error) {
                     complete(std::move(body), std::move(response), std::move(error));
                 });
    if (!outcomes->waitForAll()) {
        return {};
    }
    return outcomes->all().front().front();
}

}  // namespace vorna
