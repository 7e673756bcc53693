// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The events that were handed to the network in this run, kept for the debug list. The list grows for the
/// life of the process: it is meant to show everything.

#include <vorna/base/Export.h>

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

    /// The entry there, counted from the oldest; absent beyond the end.
    std::optional<EventShortData> entry(std::size_t index) const;

  private:
    mutable std::mutex mutex_;
    /// Grows without moving what is there.
    std::deque<EventShortData> eventList_;
};

}  // namespace vorna
