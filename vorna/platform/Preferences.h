// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The application's preferences, as a port: tables of texts under keys. The library keeps one there, the
/// last fetched remote configuration.

#include <vorna/base/Export.h>
#include <vorna/base/Result.h>
#include <vorna/platform/TextTable.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace vorna {

/// Called from any thread, concurrently. Reading may touch the disk, so it is not for hot paths.
class VORNA_EXPORT Preferences {
  public:
    using Table = std::map<std::string, std::string>;

    Preferences() = default;
    Preferences(const Preferences&) = delete;
    Preferences& operator=(const Preferences&) = delete;
    Preferences(Preferences&&) = delete;
    Preferences& operator=(Preferences&&) = delete;
    virtual ~Preferences() = default;

    /// Returns the table under the key; std::nullopt if there is none or it cannot be read, or if it is not a
    /// table of texts.
    virtual std::optional<Table> table(std::string_view key) const = 0;

    /// Replaces the table under the key atomically, even across a loss of power. On an error the former table
    /// is unchanged.
    virtual Result<void, std::error_code> setTable(std::string_view key, const Table& table) = 0;

    // The same without a Table, which takes ten times the memory of its texts. By default these use the two
    // above.

    /// Calls the function for each entry of the table under the key; the last call for a key counts. Returns
    /// false, perhaps after some calls, where `table` returns std::nullopt.
    virtual bool
    readTable(std::string_view key,
              const std::function<void(std::string_view entry, std::string_view text)>& visit) const;

    /// As `setTable`.
    virtual Result<void, std::error_code> writeTable(std::string_view key, const TextTable& table);
};

}  // namespace vorna
