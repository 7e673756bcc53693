// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Tables of the remote configuration as maps, for comparison, and the service's answers.

#include <vorna/config/RemoteConfigTable.h>
#include <vorna/json/Encoding.h>
#include <vorna/platform/NotificationCenter.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace vorna::support {

using ConfigMap = std::map<std::string, std::string>;

inline ConfigMap entriesOf(const TextTable& table) {
    ConfigMap entries;
    table.forEach([&entries](std::string_view key, std::string_view value) {
        entries.emplace(std::string(key), std::string(value));
    });
    return entries;
}

/// std::nullopt for no table.
inline std::optional<ConfigMap> entriesOf(const std::shared_ptr<const RemoteConfigTable>& table) {
    return table == nullptr ? std::nullopt : std::optional(entriesOf(*table));
}

/// The table that a notification announces.
inline ConfigMap announcedIn(const Notification& notification) {
    return entriesOf(*std::get<std::shared_ptr<const TextTable>>(notification.userInfo.at("configs")));
}

inline RemoteConfigTable tableOf(const ConfigMap& entries) {
    return RemoteConfigTable(RemoteConfigTableEntries(entries));
}

struct ConfigAnswer {
    ConfigMap configs;

    template <class Self, class Visit>
    static void visitFields(Self& self, Visit&& visit) {
        visit("configs", self.configs);
    }
};

/// The body of the answer with these entries.
inline std::string configAnswer(const ConfigMap& entries) {
    return json::encode(ConfigAnswer{entries}).value();
}

}  // namespace vorna::support
