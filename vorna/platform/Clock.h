// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The wall clock, as a port: the library reads the time only here, so a test can set it.

#include <vorna/base/Export.h>
#include <vorna/platform/Date.h>

namespace vorna {

/// Implementations are called from any thread, concurrently, on every recorded event, and must not block.
class VORNA_EXPORT Clock {
  public:
    Clock() = default;
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;
    Clock(Clock&&) = delete;
    Clock& operator=(Clock&&) = delete;
    virtual ~Clock() = default;

    /// The present moment by the wall clock. It may jump, also backwards, when the user sets the time.
    virtual Date now() const = 0;
};

}  // namespace vorna
