// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Random numbers, as a port: identifiers draw from it, so a test can reproduce them.

#include <vorna/base/Export.h>

#include <cstdint>

namespace vorna {

/// Implementations are called from any thread, concurrently. The default one is the kernel's
/// cryptographically secure generator; a host that puts its own in place must keep to that quality,
/// since user identifiers are made of it.
class VORNA_EXPORT RandomSource {
  public:
    RandomSource() = default;
    RandomSource(const RandomSource&) = delete;
    RandomSource& operator=(const RandomSource&) = delete;
    RandomSource(RandomSource&&) = delete;
    RandomSource& operator=(RandomSource&&) = delete;
    virtual ~RandomSource() = default;

    /// Uniform over the full range of 16 bits.
    virtual std::uint16_t next16() = 0;

    /// Uniform over the full range of 64 bits.
    virtual std::uint64_t next64() = 0;
};

}  // namespace vorna
