// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The kernel's cryptographically secure generator.

#include <vorna/platform/RandomSource.h>

namespace vorna {

/// Keeps no state, so numbers are never repeated in a forked process. Waits only in the first moments after
/// the machine was switched on. A kernel that refuses is fatal: predictable identifiers would do harm.
class GetrandomSource final : public RandomSource {
  public:
    std::uint16_t next16() override;
    std::uint64_t next64() override;
};

}  // namespace vorna
