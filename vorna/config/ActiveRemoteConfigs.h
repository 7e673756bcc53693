// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The remote configuration in force, which serves lookups.

#include <vorna/config/ReadMostly.h>
#include <vorna/config/RemoteConfigTable.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace vorna {

/// All operations may be called from any thread.
class ActiveRemoteConfigs {
  public:
    /// True from the first `replace` on, whether the table came from the cache or the service.
    bool isReady() const noexcept { return table_.hasValue(); }

    /// Returns the value under exactly this key, even if it is empty text; the default while nothing is ready
    /// and for a missing key. Never waits; allocates only its result.
    std::string lookup(std::string_view key, std::string_view defaultValue) const;

    /// Replaces the table in force by this one, which must not be null. A lookup sees either the former table
    /// or the new one, never a mixture.
    void publish(std::shared_ptr<const RemoteConfigTable> table);

    /// Does the same with a table of these entries.
    void replace(const std::map<std::string, std::string>& configs);

  private:
    ReadMostly<RemoteConfigTable> table_;
};

}  // namespace vorna
