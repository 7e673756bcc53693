// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The installation's identity as stored in the credential store.

#include <cstdint>
#include <string>

namespace vorna {

struct KeyChainData {
    /// A ULID as text, generated when the record was created.
    std::string userId;
    /// When it was created, in whole seconds since 1970.
    std::uint64_t installTime = 0;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("userId", self.userId);
        visit("installTime", self.installTime);
    }

    friend bool operator==(const KeyChainData&, const KeyChainData&) = default;
};

}  // namespace vorna
