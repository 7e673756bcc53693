// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A clock that shows the time it was set to.

#include <vorna/platform/Clock.h>

#include <atomic>

namespace vorna::support {

class SettableClock final : public Clock {
  public:
    explicit SettableClock(double secondsSince1970 = 1'704'067'200) : seconds_(secondsSince1970) {}

    void set(double secondsSince1970) { seconds_ = secondsSince1970; }

    /// Advances the clock by this much after each reading.
    void tickBy(double seconds) { tick_ = seconds; }

    Date now() const override {
        const double seconds = seconds_;
        seconds_ = seconds + tick_;
        return {seconds};
    }

  private:
    mutable std::atomic<double> seconds_;
    std::atomic<double> tick_ = 0;
};

}  // namespace vorna::support
