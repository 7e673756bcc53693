// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/VornaQueueWorker.h>

#include <vorna/platform/BackgroundThread.h>
#include <vorna/platform/FatalError.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/ProcessExit.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <variant>

namespace vorna {

namespace {

void reportDelivery(const std::optional<std::string>& body, const std::optional<HttpResponse>& response,
                    const std::optional<HttpError>& error) {
    constexpr int delivered = 200;
    if (!log::enabled.load(std::memory_order_relaxed)) {
        return;
    }
    if (!body || error) {
        log::debug({"Network error: ", error ? error->description : "No error description"});
    } else if (response && response->statusCode == delivered) {
        log::debug({"Data sent successfully!"});
    } else {
        log::debug({"HTTP Error: ", debugDescription(response)});
    }
}

}  // namespace

/// What the thread shares with the stop at process exit. It outlives the worker.
struct VornaQueueWorker::Loop {
    std::mutex mutex;
    std::condition_variable changed;
    bool isRunning = true;
    bool rests = false;
    std::thread::id thread;

    bool shouldRun() {
        const std::scoped_lock lock(mutex);
        return isRunning;
    }

    void sleep() {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, std::chrono::seconds(1), [this] { return !isRunning; });
    }

    void comeToRest() {
        const std::scoped_lock lock(mutex);
        rests = true;
        changed.notify_all();
    }

    void stop(std::chrono::steady_clock::time_point deadline) {
        std::unique_lock lock(mutex);
        isRunning = false;
        changed.notify_all();
        if (thread != std::this_thread::get_id()) {
            changed.wait_until(lock, deadline, [this] { return rests; });
        }
    }
};

VornaQueueWorker::VornaQueueWorker(std::shared_ptr<VornaTaskQueue> taskQueue,
                                   std::shared_ptr<EventListManager> eventListManager,
                                   std::shared_ptr<HttpClient> httpClient,
                                   std::shared_ptr<RemoteConfigHelper> remoteConfigHelper,
                                   std::string eventURL)
    : taskQueue_(std::move(taskQueue)),
      eventListManager_(std::move(eventListManager)),
      httpClient_(std::move(httpClient)),
      remoteConfigHelper_(std::move(remoteConfigHelper)),
      eventURL_(std::move(eventURL)),
      eventAddress_(URL::parse(eventURL_)) {}

void VornaQueueWorker::start() {
    auto loop = std::make_shared<Loop>();
    std::optional<std::thread> thread =
        startBackgroundThread("vorna-worker", ThreadPriority::low, [loop, weakWorker = weak_from_this()] {
            {
                const std::scoped_lock lock(loop->mutex);
                loop->thread = std::this_thread::get_id();
            }
            while (loop->shouldRun() && !processIsExiting()) {
                const std::shared_ptr<VornaQueueWorker> worker = weakWorker.lock();
                if (!worker) {
                    break;
                }
                if (std::optional<VornaTask> task = worker->taskQueue_->dequeue()) {
                    try {
                        worker->perform(std::move(*task));
                    } catch (...) {
                        // Above all a lack of memory: this task is lost, the next may fare better.
                        log::failure({"A task"});
                    }
                } else {
                    loop->sleep();
                }
            }
            loop->comeToRest();
        });
    if (!thread) {
        log::debug({"The system refuses a thread for the worker; no event will be sent"});
        return;
    }
    thread->detach();
    stopAtProcessExit([loop](std::chrono::steady_clock::time_point deadline) { loop->stop(deadline); });
}

void VornaQueueWorker::perform(VornaTask task) {
    switch (task.type) {
    case VornaTaskTypes::event:
        if (const EventData* const event = std::get_if<EventData>(&task.data)) {
            sendEvent(*event, eventURL_);
            return;
        }
        break;
    case VornaTaskTypes::remoteConfig:
        if (RemoteConfigData* const data = std::get_if<RemoteConfigData>(&task.data)) {
            remoteConfigHelper_->fetchRemoteConfigs(std::move(*data), 0);
            return;
        }
        break;
    }
    fatalError("a task of the queue does not carry the data of its kind");
}

void VornaQueueWorker::sendEvent(const EventData& event, std::string_view url) {
    std::optional<URL> address = url == eventURL_ ? eventAddress_ : URL::parse(url);
    if (!address) {
        log::debug({"Invalid URL"});
        return;
    }
    json::Encoded encoded = encode(event);
    if (!encoded) {
        log::debug({"Error encoding eventData: ", json::describe(encoded.error())});
        log::debug({"Error serializing event data"});
        return;
    }
    std::string& body = *encoded;
    log::debug({"Event Data: ", body});

    if (processIsExiting()) {
        // The host is being torn down; its observers may refer to what is gone.
        return;
    }
    eventListManager_->append({event.name, event.customValue});
    NotificationCenter::defaultCenter().post(eventListUpdatedNotification);

    httpClient_->start(
        HttpRequest{
            .url = std::move(*address),
            .method = HttpMethod::post,
            .headers = {{"Content-Type", "application/json"}},
            .body = std::move(body),
            .timeout = std::chrono::seconds(60),
        },
        reportDelivery);
}

}  // namespace vorna
