// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The system's wall clock.

#include <vorna/platform/Clock.h>

namespace vorna {

class SystemClock final : public Clock {
  public:
    Date now() const override;
};

}  // namespace vorna
