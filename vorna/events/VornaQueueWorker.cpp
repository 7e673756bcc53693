// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/VornaQueueWorker.h>

#include <vorna/base/CatchAll.h>
#include <vorna/platform/FatalError.h>
#include <vorna/platform/Fork.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/ProcessExit.h>

#include <chrono>
#include <optional>
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
    {
        const std::scoped_lock lock(mutex_);
        isStarted_ = true;
    }
    upkeep::add(weak_from_this());
    ensureRunning();
}

void VornaQueueWorker::ensureRunning() {
    const std::scoped_lock lock(mutex_);
    if (!isStarted_ || (thread_ && !thread_->hasEnded())) {
        return;
    }
    thread_ = ServiceThread::start(
        "vorna-worker", ThreadPriority::low,
        [weakWorker = weak_from_this()](ServiceThread::Self& self) { run(weakWorker, self); });
    if (thread_ || processIsExiting()) {
        return;
    }
    upkeep::request();
    if (!std::exchange(wasRefused_, true)) {
        log::debug({"The system refused a thread for the worker; the next operation tries again"});
    }
}

void VornaQueueWorker::run(const std::weak_ptr<VornaQueueWorker>& weakWorker, ServiceThread::Self& self) {
    while (!self.stopRequested()) {
        std::shared_ptr<VornaQueueWorker> worker = weakWorker.lock();
        if (!worker) {
            return;
        }
        if (std::optional<VornaTask> task = worker->taskQueue_->dequeue()) {
            // Most likely out of memory: this task is lost, the next may succeed.
            catchAll([&] { worker->perform(std::move(*task)); }, [] { log::failure({"A task"}); });
        } else {
            worker.reset();
            self.sleepFor(std::chrono::seconds(1));
        }
    }
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
    fatalError("a queued task does not hold the data of its type");
}

void VornaQueueWorker::sendEvent(const EventData& event, std::string_view url) {
    std::optional<URL> address = url == eventURL_ && eventAddress_ ? eventAddress_ : URL::parse(url);
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
        // The host is being torn down; its observers may refer to destroyed objects.
        return;
    }
    const unsigned generation = forkGeneration();
    eventListManager_->append({event.name, event.customValue});
    NotificationCenter::defaultCenter().post(eventListUpdatedNotification);
    if (generation != forkGeneration()) {
        // An observer forked and came back in the child; the event is the parent's.
        return;
    }

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
