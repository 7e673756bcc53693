// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A table of texts that may have hundreds of thousands of entries, in far less memory than a std::map.

#include <vorna/base/Export.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace vorna {

/// Immutable. Any thread, concurrently.
class VORNA_EXPORT TextTable {
  public:
    TextTable() = default;
    TextTable(const TextTable&) = delete;
    TextTable& operator=(const TextTable&) = delete;
    TextTable(TextTable&&) = delete;
    TextTable& operator=(TextTable&&) = delete;
    virtual ~TextTable() = default;

    virtual std::size_t size() const noexcept = 0;

    /// Returns the value under exactly this key, valid for the table's lifetime; std::nullopt if there is
    /// none. Does not allocate.
    virtual std::optional<std::string_view> find(std::string_view key) const noexcept = 0;

    /// Calls the function for each entry, in no particular order.
    virtual void
    forEach(const std::function<void(std::string_view key, std::string_view value)>& visit) const = 0;
};

}  // namespace vorna
