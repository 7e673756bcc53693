// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/EventListManager.h>

#include <utility>

namespace vorna {

void EventListManager::append(EventShortData event) {
    const std::scoped_lock lock(mutex_);
    eventList_.push_back(std::move(event));
}

std::vector<EventShortData> EventListManager::eventList() const {
    const std::scoped_lock lock(mutex_);
    return {eventList_.begin(), eventList_.end()};
}

std::size_t EventListManager::size() const {
    const std::scoped_lock lock(mutex_);
    return eventList_.size();
}

std::optional<EventShortData> EventListManager::entry(std::size_t index) const {
    const std::scoped_lock lock(mutex_);
    return index < eventList_.size() ? std::optional(eventList_[index]) : std::nullopt;
}

}  // namespace vorna
