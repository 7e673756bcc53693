// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Named notifications within the process: they bring the application's lifecycle to the library and the
/// library's events to its host. The names that the library posts are constants of `VornaCoreSDK`.

#include <vorna/base/Export.h>
#include <vorna/platform/TextTable.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace vorna {

/// The six signals of an application's lifecycle. A host whose toolkit does not deliver them posts them
/// itself, on its main thread.
inline constexpr std::string_view UIApplicationDidFinishLaunchingNotification =
    "UIApplicationDidFinishLaunchingNotification";
inline constexpr std::string_view UIApplicationDidBecomeActiveNotification =
    "UIApplicationDidBecomeActiveNotification";
inline constexpr std::string_view UIApplicationWillResignActiveNotification =
    "UIApplicationWillResignActiveNotification";
inline constexpr std::string_view UIApplicationDidEnterBackgroundNotification =
    "UIApplicationDidEnterBackgroundNotification";
inline constexpr std::string_view UIApplicationWillEnterForegroundNotification =
    "UIApplicationWillEnterForegroundNotification";
inline constexpr std::string_view UIApplicationDidReceiveMemoryWarningNotification =
    "UIApplicationDidReceiveMemoryWarningNotification";

/// A value in a notification's user information. A TextTable is never null.
using NotificationValue =
    std::variant<bool, std::string, std::map<std::string, std::string>, std::shared_ptr<const TextTable>>;
using UserInfo = std::map<std::string, NotificationValue, std::less<>>;

struct Notification {
    std::string name;
    /// Empty if the notification has none.
    UserInfo userInfo;
};

/// All operations may be called from any thread, and from within an observer.
class VORNA_EXPORT NotificationCenter {
  public:
    using Observer = std::function<void(const Notification&)>;

    /// Keeps one observer registered during its lifetime. Movable; may be empty.
    class VORNA_EXPORT Observation {
      public:
        Observation() noexcept = default;
        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;
        Observation(Observation&& other) noexcept = default;
        Observation& operator=(Observation&& other) noexcept;
        /// Ends the observation and waits for calls of the observer on other threads, so that anything the
        /// observer refers to may be destroyed afterwards. Do not hold a lock here that the observer takes.
        ~Observation();

        /// Ends the observation as the destructor does.
        void end() noexcept;

        /// Keeps the observer registered for the life of the process.
        void keepForever() noexcept;

      private:
        friend class NotificationCenter;
        struct Entry;
        explicit Observation(std::shared_ptr<Entry> entry) noexcept;

        std::shared_ptr<Entry> entry_;
    };

    NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;
    NotificationCenter(NotificationCenter&&) = delete;
    NotificationCenter& operator=(NotificationCenter&&) = delete;
    ~NotificationCenter();

    /// The centre shared by the library and its host; created on first use, never destroyed.
    static NotificationCenter& defaultCenter();

    /// Registers an observer to be called for each notification of that name, on the thread that posts it. It
    /// must not throw; an exception that leaves it is dropped, with a log line while `debug` is on.
    [[nodiscard]] Observation addObserver(std::string_view name, Observer observer);

    /// Calls the observers of that name in the order in which they were added, and returns when all have run.
    /// One added in the meantime is first called for the next post; one removed in the meantime is not
    /// called.
    void post(std::string_view name, UserInfo userInfo = {});

  private:
    struct Registry;

    std::shared_ptr<Registry> registry_;
};

}  // namespace vorna
