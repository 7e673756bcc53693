// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/ActiveRemoteConfigs.h>

#include <optional>
#include <utility>

namespace vorna {

std::string ActiveRemoteConfigs::lookup(std::string_view key, std::string_view defaultValue) const {
    return table_.read([key, defaultValue](const RemoteConfigTable* table) {
        const std::optional<std::string_view> value = table == nullptr ? std::nullopt : table->find(key);
        return std::string(value.value_or(defaultValue));
    });
}

void ActiveRemoteConfigs::publish(std::shared_ptr<const RemoteConfigTable> table) {
    table_.replace(std::move(table));
}

void ActiveRemoteConfigs::replace(const std::map<std::string, std::string>& configs) {
    publish(std::make_shared<const RemoteConfigTable>(RemoteConfigTableEntries(configs)));
}

}  // namespace vorna
