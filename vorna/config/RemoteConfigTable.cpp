// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigTable.h>

#include <algorithm>
#include <bit>
#include <functional>

namespace vorna {

namespace {

std::uint64_t hashOf(std::string_view key) noexcept {
    return std::hash<std::string_view>()(key);
}

std::uint32_t checkOf(std::uint64_t hash) noexcept {
    return static_cast<std::uint32_t>(hash >> 32U);
}

}  // namespace

RemoteConfigTable::RemoteConfigTable(const std::map<std::string, std::string>& configs) {
    if (configs.empty()) {
        return;
    }
    std::size_t bytes = 0;
    for (const auto& [key, value] : configs) {
        bytes += key.size() + value.size();
    }
    text_ = std::make_unique<char[]>(bytes);  // NOLINT(modernize-avoid-c-arrays)
    entries_.reserve(configs.size());
    slots_.resize(std::bit_ceil(2 * configs.size()));

    char* end = text_.get();
    const auto keep = [&end](std::string_view text) {
        char* const begin = end;
        end = std::copy(text.begin(), text.end(), begin);
        return std::string_view(begin, text.size());
    };
    const std::size_t mask = slots_.size() - 1;
    for (const auto& [key, value] : configs) {
        const std::uint64_t hash = hashOf(key);
        std::size_t at = hash & mask;
        while (slots_[at].entry != vacant) {
            at = (at + 1) & mask;
        }
        slots_[at] = {checkOf(hash), static_cast<std::uint32_t>(entries_.size())};
        entries_.push_back({keep(key), keep(value)});
    }
}

std::optional<std::string_view> RemoteConfigTable::find(std::string_view key) const noexcept {
    if (slots_.empty()) {
        return std::nullopt;
    }
    const std::uint64_t hash = hashOf(key);
    const std::uint32_t check = checkOf(hash);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hash & mask; slots_[at].entry != vacant; at = (at + 1) & mask) {
        if (slots_[at].check == check) {
            const Entry& entry = entries_[slots_[at].entry];
            if (entry.key == key) {
                return entry.value;
            }
        }
    }
    return std::nullopt;
}

}  // namespace vorna
