// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A period of use of the application, from becoming active to resigning active.

#include <cstdint>
#include <string>

namespace vorna {

struct VornaSession {
    /// Seconds since 1970.
    std::uint64_t startTime = 0;
    /// A ULID as text. Kept in memory only, never sent.
    std::string sessionID;
};

}  // namespace vorna
