// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/Lifecycle.h>

#include <vorna/events/ULID.h>
#include <vorna/platform/FatalError.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>

#include <array>
#include <string_view>
#include <utility>

namespace vorna {

namespace {

/// Seconds.
constexpr std::uint64_t inactivityBeforeRefetch = 300;
constexpr std::string_view sessionEvent = "vorna_session";

}  // namespace

Lifecycle::Lifecycle(std::shared_ptr<const Clock> clock, std::shared_ptr<RandomSource> randomSource,
                     std::shared_ptr<EventRecorder> recorder)
    : clock_(std::move(clock)),
      randomSource_(std::move(randomSource)),
      recorder_(std::move(recorder)) {}

void Lifecycle::observe() {
    using Handler = void (Lifecycle::*)();
    constexpr std::array<std::pair<std::string_view, Handler>, 6> handlers = {{
        {UIApplicationDidEnterBackgroundNotification, &Lifecycle::appDidEnterBackground},
        {UIApplicationWillEnterForegroundNotification, &Lifecycle::appWillEnterForeground},
        {UIApplicationDidBecomeActiveNotification, &Lifecycle::appDidBecomeActive},
        {UIApplicationWillResignActiveNotification, &Lifecycle::appWillResignActive},
        {UIApplicationDidFinishLaunchingNotification, &Lifecycle::appDidFinishLaunching},
        {UIApplicationDidReceiveMemoryWarningNotification, &Lifecycle::appDidReceiveMemoryWarning},
    }};
    for (const auto& [name, handler] : handlers) {
        NotificationCenter::defaultCenter()
            .addObserver(name, [this, handler = handler](const Notification&) { (this->*handler)(); })
            .keepForever();
    }
}

// Members because all handlers are.
// NOLINTBEGIN(readability-convert-member-functions-to-static)

void Lifecycle::appDidEnterBackground() {
    log::debug({"appDidEnterBackground"});
}

void Lifecycle::appWillEnterForeground() {
    log::debug({"appWillEnterForeground"});
}

void Lifecycle::appDidFinishLaunching() {
    log::debug({"appDidFinishLaunching"});
}

// NOLINTEND(readability-convert-member-functions-to-static)

void Lifecycle::appDidBecomeActive() {
    const std::scoped_lock lock(mutex_);
    if (currentSession_) {
        recorder_->event(sessionEvent, currentSession_->startTime, wholeSeconds(clock_->now()), std::nullopt);
    }
    const ULID identifier(clock_->now(), *randomSource_);
    const std::uint64_t now = wholeSeconds(clock_->now());
    currentSession_ = VornaSession{now, identifier.ulidString()};
    if (inactiveTime_) {
        if (now < *inactiveTime_) {
            fatalError("the clock was set back while the application was inactive");
        }
        if (now - *inactiveTime_ >= inactivityBeforeRefetch) {
            recorder_->fetchRemoteConfig();
        }
    }
    inactiveTime_.reset();
    log::debug({"appDidBecomeActive"});
}

void Lifecycle::appWillResignActive() {
    std::optional<VornaSession> ended;
    {
        const std::scoped_lock lock(mutex_);
        ended = std::exchange(currentSession_, std::nullopt);
    }
    // Sending notifies observers, which may post lifecycle notifications themselves: no lock is held here.
    if (ended) {
        recorder_->directEvent(sessionEvent, ended->startTime, wholeSeconds(clock_->now()), std::nullopt);
    }
    {
        const std::scoped_lock lock(mutex_);
        inactiveTime_ = wholeSeconds(clock_->now());
    }
    log::debug({"appWillResignActive"});
}

void Lifecycle::appDidReceiveMemoryWarning() {
    recorder_->event("appDidReceiveMemoryWarning", "");
    log::debug({"appDidReceiveMemoryWarning"});
}

std::optional<VornaSession> Lifecycle::currentSession() const {
    const std::scoped_lock lock(mutex_);
    return currentSession_;
}

}  // namespace vorna
