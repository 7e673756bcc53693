// SPDX-License-Identifier: Apache-2.0
/// The memory of a configuration as large as the service can send.

#include <vorna/config/ActiveRemoteConfigs.h>
#include <vorna/config/RemoteConfigHelper.h>
#include <vorna/config/RemoteConfigNotifications.h>
#include <vorna/platform/NotificationCenter.h>
#include <vorna/platform/file/FilePreferences.h>

#include <tests/support/Samples.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace vorna {
namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool isMemoryOurs = false;
#else
constexpr bool isMemoryOurs = true;
#endif

constexpr std::size_t keyCount = 700'000;

/// Answers each request immediately, like a service nearby.
class AnsweringClient final : public HttpClient {
  public:
    explicit AnsweringClient(std::function<std::string()> answer) : answer_(std::move(answer)) {}

    void start(HttpRequest request, Completion completion) override {
        HttpResponse response;
        response.statusCode = 200;
        response.url = request.url.text();
        completion(answer_(), response, std::nullopt);
    }

  private:
    const std::function<std::string()> answer_;
};

std::string keyOf(std::size_t index) {
    return "key_" + std::to_string(1'000'000 + index);
}

std::string answer() {
    std::string body = R"({"configs":{)";
    body.reserve(keyCount * 23 + 100);
    for (std::size_t index = 0; index < keyCount; ++index) {
        body += index == 0 ? "\"" : ",\"";
        body += keyOf(index);
        body += "\":\"v";
        body += std::to_string(index % 10);
        body += '"';
    }
    return body + "}}";
}

constexpr std::size_t textSize = keyCount * 13;

/// A line of /proc/self/status, in bytes.
std::size_t status(const std::string& name) {
    std::ifstream file("/proc/self/status");
    for (std::string word; file >> word;) {
        if (word == name + ":") {
            std::size_t kibibytes = 0;
            file >> kibibytes;
            return kibibytes * 1024;
        }
    }
    return 0;
}

/// How much the process grows while something runs: at its peak, and afterwards.
struct Growth {
    std::size_t peak = 0;
    std::size_t rest = 0;
};

Growth growthOf(const std::function<void()>& run) {
    const std::size_t before = status("VmRSS");
    const std::size_t anonymousBefore = status("RssAnon");
    std::ofstream("/proc/self/clear_refs") << "5";
    run();
    const auto difference = [](std::size_t now, std::size_t then) { return now > then ? now - then : 0; };
    return {difference(status("VmHWM"), before), difference(status("RssAnon"), anonymousBefore)};
}

void report(const char* what, Growth growth) {
    std::cout << what << ": text " << textSize / 1'000'000 << " MB, peak " << growth.peak / 1'000'000
              << " MB, rest " << growth.rest / 1'000'000 << " MB\n";
}

/// The facade's part: puts fetched tables in force.
class RemoteConfigMemory : public testing::Test {
  protected:
    RemoteConfigMemory() {
        observation_ = NotificationCenter::defaultCenter().addObserver(
            remoteConfigsFetchedNotification,
            [this](const Notification& notification) { inForce_.publish(fetchedTable(notification)); });
    }

    void SetUp() override {
        if (!isMemoryOurs) {
            GTEST_SKIP() << "the sanitizers use memory of their own";
        }
    }

    RemoteConfigHelper helper() const {
        return {std::make_shared<AnsweringClient>(answer),
                std::make_shared<FilePreferences>(folder_.path() / "data"),
                "https://service.example/v1/config"};
    }

    void expectAllInForce() const {
        for (std::size_t index = 0; index < keyCount; index += 997) {
            ASSERT_EQ(inForce_.lookup(keyOf(index), "default"), "v" + std::to_string(index % 10));
        }
    }

    support::TemporaryFolder folder_;
    ActiveRemoteConfigs inForce_;

  private:
    NotificationCenter::Observation observation_;
};

TEST_F(RemoteConfigMemory, RestsAtThreeTimesTheTextAfterAFetch) {
    const Growth growth =
        growthOf([this] { helper().fetchRemoteConfigs({support::sampleDeviceMetadata()}, 0); });
    report("fetched", growth);
    expectAllInForce();
    EXPECT_LT(growth.rest, 3 * textSize);
    // The answer, the table, its document: none of them as a tree.
    EXPECT_LT(growth.peak, 8 * textSize);
}

TEST_F(RemoteConfigMemory, DoesNotGrowWithLaterFetches) {
    const Growth growth = growthOf([this] {
        for (int count = 0; count < 4; ++count) {
            helper().fetchRemoteConfigs({support::sampleDeviceMetadata()}, 0);
        }
    });
    report("fetched four times", growth);
    expectAllInForce();
    EXPECT_LT(growth.rest, 3 * textSize);
}

TEST_F(RemoteConfigMemory, RestsAtThreeTimesTheTextAfterItIsLoaded) {
    helper().fetchRemoteConfigs({support::sampleDeviceMetadata()}, 0);
    ActiveRemoteConfigs reloaded;
    const Growth growth = growthOf([&] { reloaded.publish(helper().loadConfigsFromLocal()); });
    report("loaded", growth);
    EXPECT_EQ(reloaded.lookup(keyOf(7), "default"), "v7");
    EXPECT_LT(growth.rest, 3 * textSize);
    EXPECT_LT(growth.peak, 8 * textSize);
}

}  // namespace
}  // namespace vorna
