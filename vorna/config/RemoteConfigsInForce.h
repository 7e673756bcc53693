// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The remote configuration that lookups answer from.

#include <vorna/config/ReadMostly.h>
#include <vorna/config/RemoteConfigTable.h>

#include <map>
#include <string>
#include <string_view>

namespace vorna {

/// All operations may be called from any thread.
class RemoteConfigsInForce {
  public:
    /// True from the first `replace` on, whether that table came from the cache or from the service.
    bool isReady() const noexcept { return table_.hasValue(); }

    /// The value under exactly this key, also when it is empty text; the default while nothing is ready and
    /// for a key that is not there. Never waits; allocates its result and nothing else.
    std::string lookup(std::string_view key, std::string_view defaultValue) const;

    /// Puts a table in force in place of the former one. Lookups see either the one or the other, whole.
    void replace(const std::map<std::string, std::string>& configs);

  private:
    ReadMostly<RemoteConfigTable> table_;
};

}  // namespace vorna
