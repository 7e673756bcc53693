// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The notifications of the remote configuration, posted on the default notification centre.

#include <vorna/config/RemoteConfigTable.h>
#include <vorna/platform/NotificationCenter.h>

#include <memory>
#include <string_view>

namespace vorna {

/// Within the library: a table has arrived. Contains `configsEntry`.
inline constexpr std::string_view remoteConfigsFetchedNotification = "Vorna_RemoteConfigsFetched";

/// The fetched table, a TextTable.
inline constexpr std::string_view configsEntry = "configs";

/// Returns the table in a notification, whether it is a TextTable or a map; null if there is neither.
std::shared_ptr<const RemoteConfigTable> fetchedTable(const Notification& notification);

/// For the host: a fetch has ended. Contains `remoteConfigFetchedEntry`.
inline constexpr std::string_view remoteConfigsReadyNotification = "Vorna_RemoteConfigsReady";

/// A boolean: true when a fresh table is in force, false when the last attempt has failed.
inline constexpr std::string_view remoteConfigFetchedEntry = "remoteConfigFetched";

}  // namespace vorna
