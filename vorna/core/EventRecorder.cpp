// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/EventRecorder.h>

#include <vorna/platform/Log.h>
#include <vorna/platform/Upkeep.h>

#include <utility>

namespace vorna {

EventRecorder::EventRecorder(std::shared_ptr<const Clock> clock, std::shared_ptr<FacadeState> state,
                             std::shared_ptr<DeviceMetadataCollector> collector,
                             std::shared_ptr<VornaTaskQueue> queue, std::shared_ptr<VornaQueueWorker> worker,
                             std::string eventURL)
    : clock_(std::move(clock)),
      state_(std::move(state)),
      collector_(std::move(collector)),
      queue_(std::move(queue)),
      worker_(std::move(worker)),
      eventURL_(std::move(eventURL)) {}

void EventRecorder::enqueue(VornaTask task) {
    queue_->enqueue(std::move(task));
    upkeep::perform();
}

DeviceMetadata EventRecorder::deviceData() {
    return collector_->collect(state_->description());
}

EventData EventRecorder::record(std::string_view name, std::uint64_t startTime, std::uint64_t endTime,
                                std::optional<std::string_view> customValue) {
    return {std::string(name), startTime, endTime, std::string(customValue.value_or("")), deviceData()};
}

void EventRecorder::event(std::string_view name, std::optional<std::string_view> customValue) {
    log::debug({"Event called  -> ", name});
    const std::uint64_t start = wholeSeconds(clock_->now());
    const std::uint64_t end = wholeSeconds(clock_->now());
    enqueue({VornaTaskTypes::event, record(name, start, end, customValue)});
}

void EventRecorder::event(std::string_view name, std::uint64_t startTime, std::uint64_t endTime,
                          std::optional<std::string_view> customValue) {
    log::debug({"Event called  -> ", name});
    enqueue({VornaTaskTypes::event, record(name, startTime, endTime, customValue)});
}

void EventRecorder::directEvent(std::string_view name, std::uint64_t startTime, std::uint64_t endTime,
                                std::optional<std::string_view> customValue) {
    log::debug({"Direct Event called  -> ", name});
    worker_->sendEvent(record(name, startTime, endTime, customValue), eventURL_);
}

void EventRecorder::fetchRemoteConfig() {
    enqueue({VornaTaskTypes::remoteConfig, RemoteConfigData{deviceData()}});
}

}  // namespace vorna
