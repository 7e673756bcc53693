// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The library's background sender: takes tasks from the queue, posts each event and starts each fetch of the
/// remote configuration. Nothing is retried, batched or stored: an event that fails is lost.

#include <vorna/config/RemoteConfigHelper.h>
#include <vorna/events/EventData.h>
#include <vorna/events/EventListManager.h>
#include <vorna/events/VornaTaskQueue.h>
#include <vorna/platform/HttpClient.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/ServiceThread.h>
#include <vorna/platform/URL.h>
#include <vorna/platform/Upkeep.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// Posted on the default notification centre, without user information, on the sending thread, each time an
/// event has been appended to the event list.
inline constexpr std::string_view eventListUpdatedNotification = "Vorna_EventListUpdated";

/// Create with std::make_shared. The thread stops when the worker is destroyed.
class VornaQueueWorker final : public KeepsRunning, public std::enable_shared_from_this<VornaQueueWorker> {
  public:
    VornaQueueWorker(std::shared_ptr<VornaTaskQueue> taskQueue,
                     std::shared_ptr<EventListManager> eventListManager,
                     std::shared_ptr<HttpClient> httpClient,
                     std::shared_ptr<RemoteConfigHelper> remoteConfigHelper, std::string eventURL);

    /// Starts the loop on its own low-priority thread. Call once. The loop runs until the worker is destroyed
    /// or the process exits; it checks an empty queue again after a second and otherwise runs task after
    /// task. If the system refuses a thread, that is logged, and the library's next operation tries again.
    void start();

    /// Starts the loop again if `start` has been called and it is not running.
    void ensureRunning() override;

    /// Posts one event to the address and returns without waiting for the network. Any thread. The event is
    /// added to the event list and announced before its request is made, regardless of the outcome. Drops the
    /// event, with a log line, if the address is not a URL or the event cannot be encoded.
    void sendEvent(const EventData& event, std::string_view url);

  private:
    static void run(const std::weak_ptr<VornaQueueWorker>& weakWorker, ServiceThread::Self& self);
    void perform(VornaTask task);

    const std::shared_ptr<VornaTaskQueue> taskQueue_;
    const std::shared_ptr<EventListManager> eventListManager_;
    const std::shared_ptr<HttpClient> httpClient_;
    const std::shared_ptr<RemoteConfigHelper> remoteConfigHelper_;
    const std::string eventURL_;
    /// The address, parsed; std::nullopt if that failed. Each event then tries again, since memory may just
    /// have run out.
    const std::optional<URL> eventAddress_;

    Mutex mutex_;
    bool isStarted_ = false;
    bool wasRefused_ = false;
    std::optional<ServiceThread> thread_;
};

}  // namespace vorna
