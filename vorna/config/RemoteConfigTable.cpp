// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigTable.h>

#include <stdexcept>
#include <utility>

namespace vorna {

namespace {

std::uint64_t hashOf(std::string_view key) noexcept {
    return std::hash<std::string_view>()(key);
}

std::uint32_t checkOf(std::uint64_t hash) noexcept {
    return static_cast<std::uint32_t>(hash >> 32U);
}

void appendSize(std::string& records, std::size_t size) {
    for (; size >= 0x80; size >>= 7U) {
        records += static_cast<char>((size & 0x7FU) | 0x80U);
    }
    records += static_cast<char>(size);
}

std::size_t takeSize(const char*& at) noexcept {
    std::size_t size = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(*at++);
        size |= static_cast<std::size_t>(byte & 0x7FU) << shift;
        if (byte < 0x80) {
            return size;
        }
    }
}

/// The sizes of a record's texts, and where these begin.
struct Record {
    explicit Record(const char* at) noexcept
        : keySize(static_cast<unsigned char>(at[0])),
          valueSize(static_cast<unsigned char>(at[1])),
          texts(at + 2) {
        // Nearly all texts are shorter than 128 bytes.
        if ((keySize | valueSize) >= 0x80) {
            keySize = takeSize(at);
            valueSize = takeSize(at);
            texts = at;
        }
    }

    std::string_view key() const noexcept { return {texts, keySize}; }

    std::string_view value() const noexcept { return {texts + keySize, valueSize}; }

    const char* end() const noexcept { return texts + keySize + valueSize; }

    std::size_t keySize;
    std::size_t valueSize;
    const char* texts;
};

}  // namespace

RemoteConfigTable::RemoteConfigTable(RemoteConfigTableEntries entries)
    : records_(std::move(entries.records_)) {
    const std::size_t count = entries.count_;
    if (count == 0) {
        return;
    }
    records_.shrink_to_fit();
    // In a small table lookups count, in a large one its memory does.
    constexpr std::size_t large = 65'536;
    slots_.resize(count < large ? 4 * count : 2 * count);
    const char* const begin = records_.data();
    for (const char* at = begin; at != begin + records_.size();) {
        const auto offset = static_cast<std::uint32_t>(at - begin);
        const Record record(at);
        const std::uint64_t hash = hashOf(record.key());
        const std::uint32_t check = checkOf(hash);
        std::size_t slot = firstSlot(hash);
        while (slots_[slot].record != vacant &&
               (slots_[slot].check != check || Record(begin + slots_[slot].record).key() != record.key())) {
            slot = slotAfter(slot);
        }
        size_ += slots_[slot].record == vacant ? 1 : 0;
        slots_[slot] = {check, offset};
        at = record.end();
    }
}

std::size_t RemoteConfigTable::firstSlot(std::uint64_t hash) const noexcept {
    // The lower half of the hash as a fraction of the number of slots.
    return static_cast<std::size_t>(((hash & 0xFFFFFFFFU) * slots_.size()) >> 32U);
}

std::size_t RemoteConfigTable::slotAfter(std::size_t slot) const noexcept {
    return slot + 1 == slots_.size() ? 0 : slot + 1;
}

std::optional<std::string_view> RemoteConfigTable::find(std::string_view key) const noexcept {
    if (slots_.empty()) {
        return std::nullopt;
    }
    const std::uint64_t hash = hashOf(key);
    const std::uint32_t check = checkOf(hash);
    for (std::size_t slot = firstSlot(hash); slots_[slot].record != vacant; slot = slotAfter(slot)) {
        if (slots_[slot].check == check) {
            const Record record(records_.data() + slots_[slot].record);
            if (record.key() == key) {
                return record.value();
            }
        }
    }
    return std::nullopt;
}

void RemoteConfigTable::forEach(
    const std::function<void(std::string_view key, std::string_view value)>& visit) const {
    for (const Slot& slot : slots_) {
        if (slot.record != vacant) {
            const Record record(records_.data() + slot.record);
            visit(record.key(), record.value());
        }
    }
}

RemoteConfigTableEntries::RemoteConfigTableEntries(std::size_t expectedBytes) {
    records_.reserve(expectedBytes);
}

RemoteConfigTableEntries::RemoteConfigTableEntries(const std::map<std::string, std::string>& configs) {
    for (const auto& [key, value] : configs) {
        RemoteConfigTableEntries::add(key, value);
    }
}

void RemoteConfigTableEntries::clear() {
    records_.clear();
    count_ = 0;
}

void RemoteConfigTableEntries::add(std::string_view key, std::string_view value) {
    constexpr std::size_t longestSizes = 20;
    constexpr std::size_t longestRecords = UINT32_MAX;
    if (key.size() + value.size() + longestSizes > longestRecords - records_.size()) {
        throw std::length_error("the configuration is too large");
    }
    appendSize(records_, key.size());
    appendSize(records_, value.size());
    records_.append(key).append(value);
    ++count_;
}

}  // namespace vorna
