// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/ActiveRemoteConfigs.h>

#include <memory>
#include <optional>

namespace vorna {

std::string ActiveRemoteConfigs::lookup(std::string_view key, std::string_view defaultValue) const {
    return table_.read([key, defaultValue](const RemoteConfigTable* table) {
        const std::optional<std::string_view> value = table == nullptr ? std::nullopt : table->find(key);
        return std::string(value.value_or(defaultValue));
    });
}

void ActiveRemoteConfigs::replace(const std::map<std::string, std::string>& configs) {
    table_.replace(std::make_unique<const RemoteConfigTable>(configs));
}

}  // namespace vorna
