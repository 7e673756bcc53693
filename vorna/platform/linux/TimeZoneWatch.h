// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Keeps the C library's local time correct when the system's time zone changes: by default it reads the zone
/// only once.

#include <sys/stat.h>

namespace vorna {

/// Used on one thread at a time.
class TimeZoneWatch {
  public:
    /// Records the current zone and makes the C library read it, as its first use would.
    TimeZoneWatch() noexcept;

    /// Makes the C library read the zone again if it has changed since the last call. If $TZ is set, that
    /// zone stays in effect.
    void update() noexcept;

  private:
    struct stat seen_ = {};
};

}  // namespace vorna
