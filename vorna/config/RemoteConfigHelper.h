// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Fetches the remote configuration from the service and keeps the last one for the next start.
///
/// A fetched table is announced by `remoteConfigsFetchedNotification`, the last failed attempt by
/// `remoteConfigsReadyNotification` (RemoteConfigNotifications.h), both on the HTTP client's thread.

#include <vorna/config/RemoteConfigData.h>
#include <vorna/config/RemoteConfigTable.h>
#include <vorna/platform/HttpClient.h>
#include <vorna/platform/Preferences.h>

#include <memory>
#include <string>
#include <string_view>

namespace vorna {

/// All operations may be called from any thread. A response that arrives after the helper was destroyed is
/// dropped silently.
class RemoteConfigHelper {
  public:
    /// Retries after a failed first attempt.
    static constexpr int maxRetryCount = 3;

    /// The preferences key of the last fetched table.
    static constexpr std::string_view userDefaultsKey = "VornaRemoteConfigs";

    /// The URL is the full address of the service's configuration endpoint.
    RemoteConfigHelper(std::shared_ptr<HttpClient> httpClient, std::shared_ptr<Preferences> preferences,
                       const std::string& configURL);

    /// Starts one attempt and returns without waiting for the network. A failed attempt is followed
    /// immediately by the next, up to attempt number `maxRetryCount`: four requests at most for a
    /// `retryCount` of 0. A fetched table is first announced, then saved. If the address is not a URL or the
    /// request cannot be encoded, only a log line is written.
    void fetchRemoteConfigs(RemoteConfigData remoteConfigData, int retryCount);

    /// Replaces the saved table.
    void saveToLocal(const RemoteConfigTable& configs);

    /// Returns the saved table; null if there is none, or it is not a table of texts.
    std::shared_ptr<const RemoteConfigTable> loadConfigsFromLocal() const;

  private:
    struct Exchange;

    /// Completions hold a reference only while they run.
    std::shared_ptr<Exchange> exchange_;
};

}  // namespace vorna
