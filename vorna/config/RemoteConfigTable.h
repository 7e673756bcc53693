// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A fetched configuration, laid out for lookups: one block of text and a hash index over it. Immutable, so
/// any number of threads may read it.

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

class RemoteConfigTable {
  public:
    /// The empty table.
    RemoteConfigTable() = default;

    explicit RemoteConfigTable(const std::map<std::string, std::string>& configs);

    /// Returns the value under exactly this key, valid for the table's lifetime; std::nullopt if there is
    /// none. Does not allocate.
    std::optional<std::string_view> find(std::string_view key) const noexcept;

    std::size_t size() const noexcept { return entries_.size(); }

  private:
    /// Both views are into `text_`.
    struct Entry {
        std::string_view key;
        std::string_view value;
    };

    /// One slot of the index, with the part of the hash that its position does not determine: most other keys
    /// are skipped without comparing text.
    struct Slot {
        std::uint32_t check = 0;
        std::uint32_t entry = vacant;
    };

    static constexpr std::uint32_t vacant = UINT32_MAX;

    std::unique_ptr<char[]> text_;  // NOLINT(modernize-avoid-c-arrays): stays in place when moved
    std::vector<Entry> entries_;
    /// A power of two in number, at least half vacant; none in an empty table.
    std::vector<Slot> slots_;
};

}  // namespace vorna
