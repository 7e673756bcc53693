// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Keeps the C library's local time right when the user travels: it looks at the system's time zone only when
/// it is told to.

#include <sys/stat.h>

namespace vorna {

/// Used on one thread at a time.
class TimeZoneWatch {
  public:
    /// Takes note of the present zone, and has the C library read it, which it would else do at first use.
    TimeZoneWatch() noexcept;

    /// Tells the C library when the system's zone is another than at the last call. Programs for which $TZ is
    /// set keep that zone.
    void update() noexcept;

  private:
    struct stat seen_ = {};
};

}  // namespace vorna
