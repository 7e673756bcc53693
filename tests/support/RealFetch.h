// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Fixture that fetches the remote configuration with the real HTTP client and records the outcome.

#include <tests/support/ConfigTables.h>
#include <tests/support/InMemoryPreferences.h>
#include <tests/support/Samples.h>

#include <vorna/config/RemoteConfigHelper.h>
#include <vorna/config/RemoteConfigNotifications.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/curl/CurlHttpClient.h>

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

namespace vorna::support {

using Lines = std::vector<std::string>;

inline Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class RealFetch : public testing::Test {
  public:
    using Configs = std::map<std::string, std::string>;

  protected:
    RealFetch() {
        log::enabled = true;
        testing::internal::CaptureStdout();
        fetched_ = NotificationCenter::defaultCenter().addObserver(
            remoteConfigsFetchedNotification, [this](const Notification& notification) {
                const std::scoped_lock lock(mutex_);
                tables_.push_back(announcedIn(notification));
            });
        ready_ = NotificationCenter::defaultCenter().addObserver(
            remoteConfigsReadyNotification, [this](const Notification& notification) {
                EXPECT_EQ(notification.userInfo.at("remoteConfigFetched"), NotificationValue(false));
                end();
            });
        preferences_->onSave([this] { end(); });
    }

    void TearDown() override { lines(); }

    /// Fetches, and waits until all attempts have failed or the result is about to be saved. Trusts the
    /// authorities in the PEM file, or the system's if the name is empty.
    void fetch(const std::string& url, const std::string& certificateAuthorityFile = {}) {
        RemoteConfigHelper helper(std::make_shared<CurlHttpClient>(certificateAuthorityFile), preferences_,
                                  url);
        helper.fetchRemoteConfigs(data_, 0);
        std::unique_lock lock(mutex_);
        EXPECT_TRUE(ended_.wait_for(lock, std::chrono::seconds(60), [this] { return ends_ > 0; }));
    }

    /// The lines printed up to the first call.
    const Lines& lines() {
        if (!printed_) {
            printed_ = linesOf(testing::internal::GetCapturedStdout());
        }
        return *printed_;
    }

    std::shared_ptr<InMemoryPreferences> preferences_ = std::make_shared<InMemoryPreferences>();
    RemoteConfigData data_{sampleDeviceMetadata()};
    /// The tables that were announced.
    std::vector<Configs> tables_;

  private:
    void end() {
        const std::scoped_lock lock(mutex_);
        ++ends_;
        ended_.notify_all();
    }

    std::optional<Lines> printed_;
    std::mutex mutex_;
    std::condition_variable ended_;
    int ends_ = 0;
    NotificationCenter::Observation fetched_;
    NotificationCenter::Observation ready_;
};

}  // namespace vorna::support
