// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's background sender: takes tasks from the queue, posts each event, starts each fetch of the
/// remote configuration. Nothing is retried, batched or kept: an event that fails is lost.

#include <vorna/config/RemoteConfigHelper.h>
#include <vorna/events/EventData.h>
#include <vorna/events/EventListManager.h>
#include <vorna/events/VornaTaskQueue.h>
#include <vorna/platform/HttpClient.h>
#include <vorna/platform/URL.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Posted on the default notification centre, without user information, on the thread that sends, each time
/// an event has been appended to the event list.
inline constexpr std::string_view eventListUpdatedNotification = "Vorna_EventListUpdated";

/// Made by std::make_shared; the thread holds what it needs by itself.
class VornaQueueWorker : public std::enable_shared_from_this<VornaQueueWorker> {
  public:
    VornaQueueWorker(std::shared_ptr<VornaTaskQueue> taskQueue,
                     std::shared_ptr<EventListManager> eventListManager,
                     std::shared_ptr<HttpClient> httpClient,
                     std::shared_ptr<RemoteConfigHelper> remoteConfigHelper, std::string eventURL);

    /// Starts the loop on a thread of its own, of lowered priority, with all signals blocked. Call once. The
    /// loop runs as long as the worker exists: an empty queue is looked at again after a second, otherwise
    /// tasks follow each other without pause. It comes to rest when the process exits. Where the system
    /// refuses a thread, a line says so and nothing is sent.
    void start();

    /// Posts one event to the address and returns without waiting for the network. Any thread. The event is
    /// in the event list, and announced, before its request is made, whatever becomes of that. Dropped, with
    /// a log line, when the address is no URL or the event cannot be encoded.
    void sendEvent(const EventData& event, std::string_view url);

  private:
    struct Loop;

    void perform(VornaTask task);

    const std::shared_ptr<VornaTaskQueue> taskQueue_;
    const std::shared_ptr<EventListManager> eventListManager_;
    const std::shared_ptr<HttpClient> httpClient_;
    const std::shared_ptr<RemoteConfigHelper> remoteConfigHelper_;
    const std::string eventURL_;
    /// The same, parsed; absent when it is no URL.
    const std::optional<URL> eventAddress_;
};

}  // namespace vorna
