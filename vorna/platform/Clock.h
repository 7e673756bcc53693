// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The port to the wall clock. The library reads the time only here, so that tests can set it.

#include <vorna/base/Export.h>
#include <vorna/platform/Date.h>

namespace vorna {

/// Called from any thread, concurrently, for every recorded event. Implementations must not block.
class VORNA_EXPORT Clock {
  public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    Clock(Clock&&) = delete;
    Clock& operator=(Clock&&) = delete;
    virtual ~Clock() = default;

    /// Returns the current time by the wall clock, which may jump, even backwards, when the user sets it.
    virtual Date now() const = 0;
};

}  // namespace vorna
