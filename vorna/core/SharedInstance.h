// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The instance behind the facade's static operations: created by the first operation that needs it, never
/// destroyed.

#include <vorna/config/ActiveRemoteConfigs.h>
#include <vorna/config/RemoteConfigHelper.h>
#include <vorna/core/EventRecorder.h>
#include <vorna/core/FacadeState.h>
#include <vorna/core/Lifecycle.h>
#include <vorna/device/DeviceMetadataCollector.h>
#include <vorna/device/KeychainHelper.h>
#include <vorna/events/EventListManager.h>
#include <vorna/events/VornaQueueWorker.h>
#include <vorna/events/VornaTaskQueue.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/Platform.h>

#include <memory>
#include <mutex>
#include <string>

namespace vorna {

class SharedInstance {
  public:
    /// Creates the instance on the first call, with the chosen platform or else the default one.
    static SharedInstance& get();

    /// Sets the platform of the instance. False, without effect, once the instance is being created. If this
    /// throws, the instance cannot be created until another platform has been chosen.
    [[nodiscard]] static bool choose(const Platform& platform);

    explicit SharedInstance(Platform platform);

    /// See `VornaCoreSDK::Init`.
    void initialise(std::string appID);

    /// True once `initialise` has completed; waits for one that is under way.
    bool isInitialised();

    const Platform platform;
    const std::shared_ptr<VornaTaskQueue> queue;
    const std::shared_ptr<EventListManager> eventListManager;
    const std::shared_ptr<RemoteConfigHelper> remoteConfigHelper;
    const std::shared_ptr<VornaQueueWorker> worker;
    const std::shared_ptr<FacadeState> state;
    ActiveRemoteConfigs remoteConfigs;
    const std::shared_ptr<EventRecorder> recorder;
    KeychainHelper keychain;
    Lifecycle lifecycle;

  private:
    static SharedInstance& create();
    void loadConfigsFromLocal();
    void remoteConfigsFetched(const Notification& notification);

    /// Held while the identity is read and written, for which a fork does not wait.
    Mutex initialising_{Mutex::Waits::no};
    /// Set once the observers are registered and the worker is started.
    bool isRunning_ = false;
    bool isInitialised_ = false;
};

}  // namespace vorna
