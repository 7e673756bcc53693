// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The events that this process has handed to the network, for the debug list. The list grows for the life of
/// the process, since it is meant to show everything.

#include <vorna/base/Export.h>
#include <vorna/platform/Mutex.h>

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vorna {

struct EventShortData {
    std::string name;
    std::optional<std::string> customValue;

    friend bool operator==(const EventShortData&, const EventShortData&) = default;
};

/// Any thread.
class VORNA_EXPORT EventListManager {
  public:
    void append(EventShortData event);

    /// Oldest first.
    std::vector<EventShortData> eventList() const;

    std::size_t size() const;

    /// Returns the entry at that index, the oldest being 0; std::nullopt beyond the end.
    std::optional<EventShortData> entry(std::size_t index) const;

  private:
    mutable Mutex mutex_;
    /// Grows without moving its elements.
    std::deque<EventShortData> eventList_;
};

}  // namespace vorna
