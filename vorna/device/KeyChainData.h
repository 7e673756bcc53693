// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The installation's identity as the credential store keeps it.

#include <cstdint>
#include <string>

namespace vorna {

struct KeyChainData {
    /// A ULID's text, made when the record was.
    std::string userId;
    /// Whole seconds since 1970 at that moment.
    std::uint64_t installTime = 0;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("userId", self.userId);
        visit("installTime", self.installTime);
    }

    friend bool operator==(const KeyChainData&, const KeyChainData&) = default;
};

}  // namespace vorna
