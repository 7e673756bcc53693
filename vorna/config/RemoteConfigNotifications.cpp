// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigNotifications.h>

#include <map>
#include <string>
#include <variant>

namespace vorna {

std::shared_ptr<const RemoteConfigTable> fetchedTable(const Notification& notification) {
    const auto entry = notification.userInfo.find(configsEntry);
    if (entry == notification.userInfo.end()) {
        return nullptr;
    }
    if (const auto* const table = std::get_if<std::shared_ptr<const TextTable>>(&entry->second)) {
        // The helper posts no other kind of TextTable.
        return std::dynamic_pointer_cast<const RemoteConfigTable>(*table);
    }
    if (const auto* const map = std::get_if<std::map<std::string, std::string>>(&entry->second)) {
        return std::make_shared<const RemoteConfigTable>(RemoteConfigTableEntries(*map));
    }
    return nullptr;
}

}  // namespace vorna
