// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Preferences.h>

namespace vorna {

bool Preferences::readTable(
    std::string_view key,
    const std::function<void(std::string_view entry, std::string_view text)>& visit) const {
    const std::optional<Table> entries = table(key);
    if (!entries) {
        return false;
    }
    for (const auto& [entry, text] : *entries) {
        visit(entry, text);
    }
    return true;
}

Result<void, std::error_code> Preferences::writeTable(std::string_view key, const TextTable& table) {
    Table entries;
    table.forEach([&entries](std::string_view entry, std::string_view text) {
        entries.emplace(std::string(entry), std::string(text));
    });
    return setTable(key, entries);
}

}  // namespace vorna
