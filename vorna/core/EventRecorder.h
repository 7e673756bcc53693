// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Creates the record of an event when it occurs, and passes it on: to the queue, or directly to the HTTP
/// client for the one event that cannot wait.

#include <vorna/core/FacadeState.h>
#include <vorna/device/DeviceMetadataCollector.h>
#include <vorna/events/VornaQueueWorker.h>
#include <vorna/events/VornaTaskQueue.h>
#include <vorna/platform/Clock.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Any thread. All work is done on the caller's thread.
class EventRecorder {
  public:
    EventRecorder(std::shared_ptr<const Clock> clock, std::shared_ptr<FacadeState> state,
                  std::shared_ptr<DeviceMetadataCollector> collector, std::shared_ptr<VornaTaskQueue> queue,
                  std::shared_ptr<VornaQueueWorker> worker, std::string eventURL);

    /// Queues an event with the current time as both dates.
    void event(std::string_view name, std::optional<std::string_view> customValue);

    /// Queues an event with the given dates.
    void event(std::string_view name, std::uint64_t startTime, std::uint64_t endTime,
               std::optional<std::string_view> customValue);

    /// Passes an event to the HTTP client before returning, as the application may be suspended right
    /// afterwards.
    void directEvent(std::string_view name, std::uint64_t startTime, std::uint64_t endTime,
                     std::optional<std::string_view> customValue);

    /// Queues a fetch of the remote configuration.
    void fetchRemoteConfig();

  private:
    void enqueue(VornaTask task);
    DeviceMetadata deviceData();
    EventData record(std::string_view name, std::uint64_t startTime, std::uint64_t endTime,
                     std::optional<std::string_view> customValue);

    const std::shared_ptr<const Clock> clock_;
    const std::shared_ptr<FacadeState> state_;
    const std::shared_ptr<DeviceMetadataCollector> collector_;
    const std::shared_ptr<VornaTaskQueue> queue_;
    const std::shared_ptr<VornaQueueWorker> worker_;
    const std::string eventURL_;
};

}  // namespace vorna
