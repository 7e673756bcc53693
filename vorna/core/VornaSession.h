// SPDX-License-Identifier: Apache-2.0
#pragma once

/// One stretch of use of the application, from its activation to its resignation.

#include <cstdint>
#include <string>

namespace vorna {

struct VornaSession {
    /// Seconds since 1970.
    std::uint64_t startTime = 0;
    /// The text of a ULID. Kept in memory only; no request carries it.
    std::string sessionID;
};

}  // namespace vorna
