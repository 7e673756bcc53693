// SPDX-License-Identifier: Apache-2.0
#pragma once

/// A fetched configuration, laid out for lookups in little memory: one block of text and a hash index over
/// it.

#include <vorna/platform/TextTable.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// The entries of a table that is about to be made.
class RemoteConfigTableEntries {
  public:
    /// Makes room for that many bytes of text.
    explicit RemoteConfigTableEntries(std::size_t expectedBytes = 0);

    explicit RemoteConfigTableEntries(const std::map<std::string, std::string>& configs);

    void clear();

    /// The last of those with the same key counts. Throws std::length_error beyond 4 GiB of text.
    void add(std::string_view key, std::string_view value);

  private:
    friend class RemoteConfigTable;

    /// For each entry the sizes of its key and value, seven bits to a byte, and the two texts.
    std::string records_;
    std::size_t count_ = 0;
};

class RemoteConfigTable final : public TextTable {
  public:
    /// The empty table.
    RemoteConfigTable() = default;

    /// Takes over the entries and returns the room that they did not need.
    explicit RemoteConfigTable(RemoteConfigTableEntries entries);

    std::size_t size() const noexcept override { return size_; }

    std::optional<std::string_view> find(std::string_view key) const noexcept override;

    void
    forEach(const std::function<void(std::string_view key, std::string_view value)>& visit) const override;

  private:
    /// One slot of the index: where the entry's record begins, and the part of the key's hash that the slot's
    /// position does not determine, so that most other keys are skipped without looking at their records.
    struct Slot {
        std::uint32_t check = 0;
        std::uint32_t record = vacant;
    };

    static constexpr std::uint32_t vacant = UINT32_MAX;

    std::size_t firstSlot(std::uint64_t hash) const noexcept;
    std::size_t slotAfter(std::size_t slot) const noexcept;

    std::string records_;
    /// At least half of them vacant; none in an empty table.
    std::vector<Slot> slots_;
    std::size_t size_ = 0;
};

}  // namespace vorna
