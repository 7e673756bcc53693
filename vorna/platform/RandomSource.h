// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The port to random numbers. Identifiers are made from them, so tests can reproduce identifiers.

#include <vorna/base/Export.h>

#include <cstdint>

namespace vorna {

/// Called from any thread, concurrently. The default implementation is the kernel's cryptographically secure
/// generator; a host's must be of the same quality, since user identifiers depend on it.
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

/// The default implementation, for all of the process's life.
VORNA_EXPORT RandomSource& systemRandomSource();

}  // namespace vorna
