// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigHelper.h>

#include <vorna/config/RemoteConfigNotifications.h>
#include <vorna/config/RemoteConfigRequest.h>
#include <vorna/config/RemoteConfigResponse.h>
#include <vorna/json/Encoding.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/URL.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace vorna {

namespace {

using Configs = std::shared_ptr<const RemoteConfigTable>;

void save(Preferences& preferences, const RemoteConfigTable& configs) {
    if (const auto saved = preferences.writeTable(RemoteConfigHelper::userDefaultsKey, configs)) {
        log::debug({"Configs saved to UserDefaults"});
    } else {
        log::debug({"Configs could not be saved to UserDefaults: ", saved.error().message()});
    }
}

/// The configuration in a response; null after logging why there is none.
Configs configsIn(const std::optional<std::string>& body, const std::optional<HttpResponse>& response,
                  const std::optional<HttpError>& error) {
    constexpr int ok = 200;
    if (error) {
        log::debug({"Error fetching remote configs: ", error->description});
        return nullptr;
    }
    if (response) {
        if (response->statusCode != ok) {
            log::debug({"HTTP Error: ", debugDescription(response)});
            return nullptr;
        }
        log::debug({"Config received successfully!"});
    }
    if (!body) {
        log::debug({"No data received"});
        return nullptr;
    }
    Result<RemoteConfigResponse, json::DecodingError> decoded = decodeRemoteConfigResponse(*body);
    if (!decoded) {
        log::debug({"Decoding error: ", json::describe(decoded.error(), *body)});
        return nullptr;
    }
    return std::move(decoded->configs);
}

/// Returns to the system what reading a large table has taken: the C library would keep tens of megabytes for
/// the next one.
void returnMemory([[maybe_unused]] std::size_t tableSize) {
#ifdef __GLIBC__
    constexpr std::size_t large = std::size_t{1} << 20U;
    if (tableSize >= large) {
        malloc_trim(0);
    }
#endif
}

}  // namespace

struct RemoteConfigHelper::Exchange {
    std::shared_ptr<HttpClient> httpClient;
    std::shared_ptr<Preferences> preferences;
    std::string address;
    /// The address, parsed; std::nullopt if that failed. Each fetch then tries again, since memory may just
    /// have run out.
    std::optional<URL> parsedAddress;

    static void fetch(const std::shared_ptr<Exchange>& self, RemoteConfigData data, int retryCount);
    static void retry(const std::shared_ptr<Exchange>& self, RemoteConfigData data, int retryCount);
    void succeed(const Configs& configs) const;
};

void RemoteConfigHelper::Exchange::fetch(const std::shared_ptr<Exchange>& self, RemoteConfigData data,
                                         int retryCount) {
    std::optional<URL> url = self->parsedAddress ? self->parsedAddress : URL::parse(self->address);
    if (!url) {
        log::debug({"Invalid URL"});
        return;
    }
    json::Encoded body = json::encode(RemoteConfigRequest{data.deviceData});
    if (!body) {
        log::debug({"Error serializing request body: ", json::describe(body.error())});
        return;
    }
    HttpRequest request{.url = *std::move(url),
                        .method = HttpMethod::post,
                        .headers = {{"Content-Type", "application/json"}},
                        .body = *std::move(body),
                        .timeout = std::chrono::seconds(5)};
    self->httpClient->start(std::move(request), [weakSelf = std::weak_ptr(self), data = std::move(data),
                                                 retryCount](std::optional<std::string> received,
                                                             const std::optional<HttpResponse>& response,
                                                             const std::optional<HttpError>& error) {
        const std::shared_ptr<Exchange> exchange = weakSelf.lock();
        if (exchange == nullptr) {
            return;
        }
        const std::size_t size = received ? received->size() : 0;
        const Configs configs = configsIn(received, response, error);
        // A large body's memory is of more use for what follows.
        received.reset();
        if (configs) {
            exchange->succeed(configs);
        } else {
            retry(exchange, data, retryCount);
        }
        returnMemory(size);
    });
}

void RemoteConfigHelper::Exchange::retry(const std::shared_ptr<Exchange>& self, RemoteConfigData data,
                                         int retryCount) {
    if (retryCount >= maxRetryCount) {
        log::debug({"Max retry attempts reached. Failed to fetch remote configs."});
        UserInfo userInfo;
        userInfo.emplace(remoteConfigFetchedEntry, false);
        NotificationCenter::defaultCenter().post(remoteConfigsReadyNotification, std::move(userInfo));
        return;
    }
    log::debug({"Retrying fetch... Attempt ", std::to_string(retryCount + 1)});
    fetch(self, std::move(data), retryCount + 1);
}

void RemoteConfigHelper::Exchange::succeed(const Configs& configs) const {
    UserInfo userInfo;
    userInfo.emplace(configsEntry, std::shared_ptr<const TextTable>(configs));
    // Announced before it is saved: the host need not wait for the disk.
    NotificationCenter::defaultCenter().post(remoteConfigsFetchedNotification, std::move(userInfo));
    save(*preferences, *configs);
}

RemoteConfigHelper::RemoteConfigHelper(std::shared_ptr<HttpClient> httpClient,
                                       std::shared_ptr<Preferences> preferences, const std::string& configURL)
    : exchange_(std::make_shared<Exchange>(
          Exchange{std::move(httpClient), std::move(preferences), configURL, URL::parse(configURL)})) {}

void RemoteConfigHelper::fetchRemoteConfigs(RemoteConfigData remoteConfigData, int retryCount) {
    Exchange::fetch(exchange_, std::move(remoteConfigData), retryCount);
}

void RemoteConfigHelper::saveToLocal(const RemoteConfigTable& configs) {
    save(*exchange_->preferences, configs);
}

Configs RemoteConfigHelper::loadConfigsFromLocal() const {
    RemoteConfigTableEntries entries;
    std::size_t size = 0;
    const auto add = [&](std::string_view key, std::string_view value) {
        entries.add(key, value);
        size += key.size() + value.size();
    };
    if (!exchange_->preferences->readTable(userDefaultsKey, add)) {
        log::debug({"No configs found in UserDefaults"});
        return nullptr;
    }
    log::debug({"Configs loaded from UserDefaults"});
    Configs configs = std::make_shared<const RemoteConfigTable>(std::move(entries));
    returnMemory(size);
    return configs;
}

}  // namespace vorna
