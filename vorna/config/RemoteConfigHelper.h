// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Fetches the remote configuration from the service and keeps the last one for the next start.
///
/// A fetched table is handed on by `remoteConfigsFetchedNotification`, posted on the HTTP client's thread;
/// the last failed attempt posts `remoteConfigsReadyNotification` itself. Both are in
/// RemoteConfigNotifications.h.

#include <vorna/config/RemoteConfigData.h>
#include <vorna/platform/HttpClient.h>
#include <vorna/platform/Preferences.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorna {

/// All operations may be called from any thread. An answer that comes when the helper is gone is dropped
/// without a word.
class RemoteConfigHelper {
  public:
    /// Repetitions after a first attempt that failed.
    static constexpr int maxRetryCount = 3;

    /// The entry of the preferences that holds the last fetched table.
    static constexpr std::string_view userDefaultsKey = "VornaRemoteConfigs";

    /// The URL is the full address of the service's configuration endpoint.
    RemoteConfigHelper(std::shared_ptr<HttpClient> httpClient, std::shared_ptr<Preferences> preferences,
                       const std::string& configURL);

    /// Starts one attempt and returns without waiting for the network. A failed attempt is followed by the
    /// next at once, each starting when the one before has ended, until the number of an attempt reaches
    /// `maxRetryCount`: four requests at most for a `retryCount` of 0. What is fetched is announced first and
    /// saved then. When the address is no URL or the request cannot be encoded, a log line is all that
    /// happens.
    void fetchRemoteConfigs(RemoteConfigData remoteConfigData, int retryCount);

    /// Replaces the saved table.
    void saveToLocal(const std::map<std::string, std::string>& configs);

    /// The saved table; absent when there is none, or when what is saved is anything but a table from text to
    /// text.
    std::optional<std::map<std::string, std::string>> loadConfigsFromLocal() const;

  private:
    struct Exchange;

    /// Shared with completions for as long as they run, and not for as long as they are awaited.
    std::shared_ptr<Exchange> exchange_;
};

}  // namespace vorna
