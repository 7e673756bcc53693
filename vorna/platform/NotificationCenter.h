// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Named notifications within the process: how the application's lifecycle reaches the library, and how the
/// library tells its host what happened. The names the library posts are constants of `VornaCoreSDK`.

#include <vorna/base/Export.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace vorna {

/// The six signals of an application's life. A host without a toolkit that delivers them posts them itself,
/// on its main thread.
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

/// What a notification carries: named values of three kinds.
using NotificationValue = std::variant<bool, std::string, std::map<std::string, std::string>>;
using UserInfo = std::map<std::string, NotificationValue, std::less<>>;

struct Notification {
    std::string name;
    /// Empty when the notification carries nothing.
    UserInfo userInfo;
};

/// All operations may be called from any thread, also from within an observer.
class VORNA_EXPORT NotificationCenter {
  public:
    using Observer = std::function<void(const Notification&)>;

    /// Keeps one observer registered for as long as it lives. Movable; an empty one keeps nothing.
    class VORNA_EXPORT Observation {
      public:
        Observation() noexcept = default;
        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;
        Observation(Observation&& other) noexcept = default;
        Observation& operator=(Observation&& other) noexcept;
        /// Ends the observation. Calls of the observer that run on other threads are waited for, so whatever
        /// the observer refers to may go afterwards; do not hold a lock here that the observer takes.
        ~Observation();

        /// Ends the observation now, as the destructor does.
        void end() noexcept;

        /// Lets the observer stay for the life of the process.
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

    /// The centre that the library and its host share; made on first use, never destroyed.
    static NotificationCenter& defaultCenter();

    /// Calls the observer for each notification of that name, on the thread that posts it. The observer must
    /// not throw; an exception that leaves it is dropped, with a line about it while `debug` is on.
    [[nodiscard]] Observation addObserver(std::string_view name, Observer observer);

    /// Calls the observers of the name in the order in which they were added, and returns when all have run.
    /// One that is added meanwhile is first called by the next post; one that ended meanwhile is not called.
    void post(std::string_view name, UserInfo userInfo = {});

  private:
    struct Registry;

    std::shared_ptr<Registry> registry_;
};

}  // namespace vorna
