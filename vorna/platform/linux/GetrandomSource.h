// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The kernel's cryptographically secure random number generator.

#include <vorna/platform/RandomSource.h>

namespace vorna {

/// Stateless, so a forked process never repeats numbers. Blocks only in the first moments after boot. Failure
/// is fatal: predictable identifiers would do harm.
class GetrandomSource final : public RandomSource {
  public:
    std::uint16_t next16() override;
    std::uint64_t next64() override;
};

}  // namespace vorna
