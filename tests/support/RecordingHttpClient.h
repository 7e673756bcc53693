// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A fake HTTP client that sends nothing.
///
/// Knobs: who completes a request: the test by `answer` (the default), the client synchronously in `start`,
/// or the client on its own thread; for the latter two, a script of answers whose last one repeats. Records:
/// every request, in order, and how many were in flight at once.

#include <vorna/platform/HttpClient.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vorna::support {

/// The arguments of a completion.
struct HttpAnswer {
    std::optional<std::string> body;
    std::optional<HttpResponse> response;
    std::optional<HttpError> error;

    /// A response with this status and body.
    static HttpAnswer status(int code, std::string text = {}) {
        return {std::move(text), HttpResponse{"https://service.example/answered", code, {}}, std::nullopt};
    }

    /// A transport failure without a response.
    static HttpAnswer failure(std::string description) {
        return {std::nullopt, std::nullopt, HttpError{std::move(description)}};
    }
};

class RecordingHttpClient final : public HttpClient {
  public:
    enum class Completes : std::uint8_t { whenTold, onCallingThread, onOwnThread };

    RecordingHttpClient() = default;

    RecordingHttpClient(Completes completes, std::vector<HttpAnswer> script)
        : completes_(completes),
          state_(std::make_shared<State>()) {
        state_->script.assign(script.begin(), script.end());
        if (completes_ == Completes::onOwnThread) {
            thread_ = std::thread([state = state_] { state->run(); });
        }
    }

    RecordingHttpClient(const RecordingHttpClient&) = delete;
    RecordingHttpClient& operator=(const RecordingHttpClient&) = delete;
    RecordingHttpClient(RecordingHttpClient&&) = delete;
    RecordingHttpClient& operator=(RecordingHttpClient&&) = delete;

    /// Pending requests are never completed.
    ~RecordingHttpClient() override {
        {
            const std::scoped_lock lock(state_->mutex);
            state_->ends = true;
            state_->waiting.clear();
        }
        state_->changed.notify_all();
        if (thread_.joinable()) {
            if (thread_.get_id() == std::this_thread::get_id()) {
                thread_.detach();
            } else {
                thread_.join();
            }
        }
    }

    void start(HttpRequest request, Completion completion) override {
        {
            const std::scoped_lock lock(state_->mutex);
            state_->requests.push_back(std::move(request));
            state_->waiting.push_back(std::move(completion));
            ++state_->underWay;
            state_->mostUnderWay = std::max(state_->mostUnderWay, state_->underWay);
        }
        state_->changed.notify_all();
        if (completes_ == Completes::onCallingThread) {
            state_->completeNext(std::nullopt);
        }
    }

    /// Completes the oldest pending request, on this thread. False if there is none.
    bool answer(HttpAnswer answer) { return state_->completeNext(std::move(answer)); }

    std::vector<HttpRequest> requests() const {
        const std::scoped_lock lock(state_->mutex);
        return state_->requests;
    }

    std::size_t requestCount() const {
        const std::scoped_lock lock(state_->mutex);
        return state_->requests.size();
    }

    /// Requests started but not completed. A request counts as completed before its completion runs.
    std::size_t underWay() const {
        const std::scoped_lock lock(state_->mutex);
        return state_->underWay;
    }

    std::size_t mostUnderWay() const {
        const std::scoped_lock lock(state_->mutex);
        return state_->mostUnderWay;
    }

    /// Waits for that many requests. False after a generous timeout.
    bool waitForRequests(std::size_t count) const {
        std::unique_lock lock(state_->mutex);
        return state_->changed.wait_for(lock, std::chrono::seconds(30),
                                        [&] { return state_->requests.size() >= count; });
    }

  private:
    /// Shared with the client's thread, which may be the one that destroys the client.
    struct State {
        mutable std::mutex mutex;
        std::condition_variable changed;
        std::vector<HttpRequest> requests;
        std::deque<Completion> waiting;
        std::deque<HttpAnswer> script;
        std::size_t underWay = 0;
        std::size_t mostUnderWay = 0;
        bool ends = false;

        bool completeNext(std::optional<HttpAnswer> answer) {
            Completion completion;
            {
                const std::scoped_lock lock(mutex);
                if (waiting.empty()) {
                    return false;
                }
                completion = std::move(waiting.front());
                waiting.pop_front();
                --underWay;
                if (!answer) {
                    answer = script.front();
                    if (script.size() > 1) {
                        script.pop_front();
                    }
                }
            }
            completion(std::move(answer->body), std::move(answer->response), std::move(answer->error));
            return true;
        }

        void run() {
            for (;;) {
                {
                    std::unique_lock lock(mutex);
                    changed.wait(lock, [this] { return ends || !waiting.empty(); });
                    if (ends) {
                        return;
                    }
                }
                completeNext(std::nullopt);
            }
        }
    };

    Completes completes_ = Completes::whenTold;
    std::shared_ptr<State> state_ = std::make_shared<State>();
    std::thread thread_;
};

}  // namespace vorna::support
