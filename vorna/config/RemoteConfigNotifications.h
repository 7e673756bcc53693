// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The notifications of the remote configuration, posted on the default notification centre.

#include <string_view>

namespace vorna {

/// Within the library: a table has arrived. Contains `configsEntry`.
inline constexpr std::string_view remoteConfigsFetchedNotification = "Vorna_RemoteConfigsFetched";

/// The fetched table, a map from text to text.
inline constexpr std::string_view configsEntry = "configs";

/// For the host: a fetch has ended. Contains `remoteConfigFetchedEntry`.
inline constexpr std::string_view remoteConfigsReadyNotification = "Vorna_RemoteConfigsReady";

/// A boolean: true when a fresh table is in force, false when the last attempt has failed.
inline constexpr std::string_view remoteConfigFetchedEntry = "remoteConfigFetched";

}  // namespace vorna
