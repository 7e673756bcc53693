// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/SharedInstance.h>

#include <vorna/config/RemoteConfigNotifications.h>
#include <vorna/core/ScreensSlot.h>
#include <vorna/events/ULID.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/NoCancellation.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace vorna {

namespace {

/// The host's choice of platform. It can be changed until the instance is created.
struct Choice {
    Mutex mutex;
    std::optional<Platform> platform;
    bool isFinal = false;
};

Choice& choice() {
    static NeverDestroyed<Choice> value;
    return *value;
}

template <class Port>
void useDefault(std::shared_ptr<Port>& port, const std::shared_ptr<Port>& standard) {
    if (!port) {
        port = standard;
    }
}

Platform usable(Platform platform) {
    if (platform.isUnusable) {
        throw std::runtime_error("the platform that the application wants could not be made");
    }
    return platform;
}

/// Returns the chosen platform with default ports in place of missing ones. Throws if a platform is unusable.
Platform completed(std::optional<Platform> chosen) {
    if (!chosen) {
        return usable(makePlatform());
    }
    Platform platform = usable(std::move(*chosen));
    const bool isComplete = platform.httpClient && platform.credentialStore && platform.preferences &&
                            platform.system && platform.clock && platform.randomSource &&
                            !platform.eventURL.empty() && !platform.configURL.empty();
    if (isComplete) {
        return platform;
    }
    const Platform standard = usable(makePlatform());
    useDefault(platform.httpClient, standard.httpClient);
    useDefault(platform.credentialStore, standard.credentialStore);
    useDefault(platform.preferences, standard.preferences);
    useDefault(platform.system, standard.system);
    useDefault(platform.clock, standard.clock);
    useDefault(platform.randomSource, standard.randomSource);
    if (platform.eventURL.empty()) {
        platform.eventURL = standard.eventURL;
    }
    if (platform.configURL.empty()) {
        platform.configURL = standard.configURL;
    }
    return platform;
}

Platform finalChoice() {
    std::optional<Platform> chosen;
    {
        const std::scoped_lock lock(choice().mutex);
        choice().isFinal = true;
        // A copy: if creating the instance fails, the next operation tries again with the same choice.
        chosen = choice().platform;
    }
    return completed(std::move(chosen));
}

constinit std::atomic<SharedInstance*> created = nullptr;

}  // namespace

SharedInstance& SharedInstance::get() {
    SharedInstance* const instance = created.load(std::memory_order_acquire);
    return instance == nullptr ? create() : *instance;
}

/// Not a static variable with an initialiser: in the child of a fork it would wait for ever for another
/// thread of the parent that was in the middle of it.
SharedInstance& SharedInstance::create() {
    static NeverDestroyed<Mutex> mutex;
    static NeverDestroyed<std::optional<SharedInstance>> instance;
    const std::scoped_lock lock(*mutex);
    if (created.load(std::memory_order_relaxed) == nullptr) {
        created.store(&instance->emplace(finalChoice()), std::memory_order_release);
    }
    return **instance;
}

bool SharedInstance::choose(const Platform& platform) {
    const std::scoped_lock lock(choice().mutex);
    if (choice().isFinal) {
        return false;
    }
    // In force if there is no memory for the copy.
    choice().platform = unusablePlatform();
    Platform copy = platform;
    choice().platform = std::move(copy);
    return true;
}

SharedInstance::SharedInstance(Platform thePlatform)
    : platform(std::move(thePlatform)),
      queue(std::make_shared<VornaTaskQueue>()),
      eventListManager(std::make_shared<EventListManager>()),
      remoteConfigHelper(std::make_shared<RemoteConfigHelper>(platform.httpClient, platform.preferences,
                                                              platform.configURL)),
      worker(std::make_shared<VornaQueueWorker>(queue, eventListManager, platform.httpClient,
                                                remoteConfigHelper, platform.eventURL)),
      state(std::make_shared<FacadeState>()),
      recorder(std::make_shared<EventRecorder>(
          platform.clock, state, std::make_shared<DeviceMetadataCollector>(platform.system, platform.clock),
          queue, worker, platform.eventURL)),
      keychain(platform.credentialStore, platform.clock,
               [randomSource = platform.randomSource](Date date) {
                   return ULID(date, *randomSource).ulidString();
               }),
      lifecycle(platform.clock, platform.randomSource, recorder) {
    screens::provide({platform.httpClient, platform.system, eventListManager});
}

void SharedInstance::initialise(std::string appID) {
    const NoCancellation throughout;
    const std::scoped_lock lock(initialising_);
    if (isInitialised_) {
        loadConfigsFromLocal();
        recorder->fetchRemoteConfig();
        return;
    }
    state->setAppID(std::move(appID));
    // If a port throws, a later call resumes from here and must not observe or send twice.
    if (!std::exchange(isRunning_, true)) {
        lifecycle.observe();
        NotificationCenter::defaultCenter()
            .addObserver(remoteConfigsFetchedNotification,
                         [this](const Notification& notification) { remoteConfigsFetched(notification); })
            .keepForever();
        worker->start();
    }
    KeyChainData identity = keychain.loadOrCreateIdentity();
    state->setIdentity(std::move(identity.userId), identity.installTime);
    loadConfigsFromLocal();
    recorder->fetchRemoteConfig();
    log::debug({"VornaSDK initialized"});
    recorder->event("sdk_initialized", "");
    isInitialised_ = true;
}

bool SharedInstance::isInitialised() {
    const std::scoped_lock lock(initialising_);
    return isInitialised_;
}

void SharedInstance::loadConfigsFromLocal() {
    if (auto configs = remoteConfigHelper->loadConfigsFromLocal()) {
        remoteConfigs.publish(std::move(configs));
    }
}

void SharedInstance::remoteConfigsFetched(const Notification& notification) {
    auto configs = fetchedTable(notification);
    if (!configs) {
        return;
    }
    remoteConfigs.publish(std::move(configs));
    NotificationCenter::defaultCenter().post(remoteConfigsReadyNotification,
                                             {{std::string(remoteConfigFetchedEntry), true}});
}

}  // namespace vorna
