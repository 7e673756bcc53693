// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/NotificationCenter.h>

#include <vorna/base/CatchAll.h>
#include <vorna/platform/Fork.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/Mutex.h>
#include <vorna/platform/NeverDestroyed.h>
#include <vorna/platform/NoCancellation.h>

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace vorna {

struct NotificationCenter::Registry {
    Mutex mutex;
    std::map<std::string, std::vector<std::shared_ptr<Observation::Entry>>, std::less<>> entries;
};

/// One observer. Running calls are recorded by thread, so that `deactivate` waits for those on other threads
/// and never for its own.
struct NotificationCenter::Observation::Entry {
    Entry(std::weak_ptr<Registry> inRegistry, std::string forName, Observer calledObserver)
        : registry(std::move(inRegistry)),
          name(std::move(forName)),
          observer(std::move(calledObserver)) {}

    const std::weak_ptr<Registry> registry;
    const std::string name;
    const Observer observer;

    Mutex mutex;
    std::condition_variable callEnded;
    bool isActive = true;
    std::vector<std::thread::id> calls;
    unsigned generation = forkGeneration();

    /// Called with the lock held. In the child of a fork the calls on the parent's other threads never end,
    /// and those that waited for them are not there.
    void forgetParentsCalls() {
        if (generation != forkGeneration()) {
            generation = forkGeneration();
            std::construct_at(&callEnded);
            std::erase_if(calls, [](std::thread::id id) { return id != std::this_thread::get_id(); });
        }
    }

    /// Removes the record of a call when it ends, also if the observer has ended its thread.
    class CallEnd {
      public:
        explicit CallEnd(Entry& entry) noexcept : entry_(entry) {}

        CallEnd(const CallEnd&) = delete;
        CallEnd& operator=(const CallEnd&) = delete;
        CallEnd(CallEnd&&) = delete;
        CallEnd& operator=(CallEnd&&) = delete;

        ~CallEnd() {
            {
                const std::scoped_lock lock(entry_.mutex);
                std::vector<std::thread::id>& recorded = entry_.calls;
                const auto call = std::find(recorded.begin(), recorded.end(), std::this_thread::get_id());
                if (call != recorded.end()) {
                    recorded.erase(call);
                }
            }
            entry_.callEnded.notify_all();
        }

      private:
        Entry& entry_;
    };

    void call(const Notification& notification) {
        {
            const std::scoped_lock lock(mutex);
            if (!isActive) {
                return;
            }
            forgetParentsCalls();
            calls.push_back(std::this_thread::get_id());
        }
        const CallEnd end(*this);
        catchAll([&] { observer(notification); }, [&] { log::failure({"An observer of ", name}); });
    }

    void deactivate() {
        std::unique_lock<std::mutex> lock(mutex);
        forgetParentsCalls();
        isActive = false;
        callEnded.wait(lock, [this] {
            return std::all_of(calls.begin(), calls.end(),
                               [](std::thread::id id) { return id == std::this_thread::get_id(); });
        });
    }
};

NotificationCenter::Observation::Observation(std::shared_ptr<Entry> entry) noexcept
    : entry_(std::move(entry)) {}

NotificationCenter::Observation& NotificationCenter::Observation::operator=(Observation&& other) noexcept {
    if (this != &other) {
        end();
        entry_ = std::move(other.entry_);
    }
    return *this;
}

NotificationCenter::Observation::~Observation() {
    end();
}

void NotificationCenter::Observation::end() noexcept {
    const std::shared_ptr<Entry> entry = std::exchange(entry_, nullptr);
    if (!entry) {
        return;
    }
    const NoCancellation inDestructor;
    if (const std::shared_ptr<Registry> registry = entry->registry.lock()) {
        const std::scoped_lock lock(registry->mutex);
        const auto named = registry->entries.find(entry->name);
        if (named != registry->entries.end()) {
            std::erase(named->second, entry);
        }
    }
    entry->deactivate();
}

void NotificationCenter::Observation::keepForever() noexcept {
    entry_.reset();
}

NotificationCenter::NotificationCenter() : registry_(std::make_shared<Registry>()) {}

NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
    static NeverDestroyed<NotificationCenter> center;
    return *center;
}

NotificationCenter::Observation NotificationCenter::addObserver(std::string_view name, Observer observer) {
    auto entry = std::make_shared<Observation::Entry>(registry_, std::string(name), std::move(observer));
    const std::scoped_lock lock(registry_->mutex);
    registry_->entries[entry->name].push_back(entry);
    return Observation(std::move(entry));
}

void NotificationCenter::post(std::string_view name, UserInfo userInfo) {
    std::vector<std::shared_ptr<Observation::Entry>> called;
    {
        const std::scoped_lock lock(registry_->mutex);
        const auto named = registry_->entries.find(name);
        if (named == registry_->entries.end() || named->second.empty()) {
            return;
        }
        called = named->second;
    }
    const Notification notification{std::string(name), std::move(userInfo)};
    for (const std::shared_ptr<Observation::Entry>& entry : called) {
        entry->call(notification);
    }
}

}  // namespace vorna
