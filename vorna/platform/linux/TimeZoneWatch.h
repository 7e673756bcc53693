// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Keeps the C library's local time correct when the system's time zone changes: by default it reads the zone
/// only once.

#include <sys/stat.h>

#include <ctime>
#include <optional>

namespace vorna {

/// The time in the system's zone, as localtime_r gives it; std::nullopt for a year out of its range. Any
/// thread.
///
/// The C library guards its zone by a lock that stays locked in the child if another thread holds it during a
/// fork. So we use it under one of ours.
std::optional<std::tm> localTime(std::time_t moment);

/// Used on one thread at a time.
class TimeZoneWatch {
  public:
    /// Records the current zone and makes the C library read it, as its first use would.
    TimeZoneWatch();

    /// Makes the C library read the zone again if it has changed since the last call. If $TZ is set, that
    /// zone stays in effect.
    void update();

  private:
    struct stat seen_ = {};
};

}  // namespace vorna
