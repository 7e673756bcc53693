// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/LocalService.h>

#include <vorna/events/EventData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace vorna {
namespace {

using support::LocalService;
using testing::HasSubstr;
using testing::SizeIs;

EventData eventOf(const std::string& document) {
    return decodeEventData(document).value();
}

/// Counts completed requests, so that a test can wait for them.
class WatchedHttpClient final : public HttpClient {
  public:
    explicit WatchedHttpClient(std::shared_ptr<HttpClient> client) : client_(std::move(client)) {}

    void start(HttpRequest request, Completion completion) override {
        client_->start(std::move(request), [this, completion = std::move(completion)](auto... outcome) {
            completion(std::move(outcome)...);
            const std::scoped_lock lock(mutex_);
            ++completed_;
            changed_.notify_all();
        });
    }

    bool waitForCompletions(std::size_t count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::minutes(2), [&] { return completed_ >= count; });
    }

  private:
    const std::shared_ptr<HttpClient> client_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t completed_ = 0;
};

std::shared_ptr<WatchedHttpClient> usePlatformOf(const LocalService& service) {
    Platform platform = makePlatform(service.options());
    auto http = std::make_shared<WatchedHttpClient>(platform.httpClient);
    platform.httpClient = http;
    VornaCoreSDK::UsePlatform(std::move(platform));
    return http;
}

TEST(Delivery, SendsEventsOverTlsWithTheStateOfThisMachine) {
    const LocalService service;
    usePlatformOf(service);
    VornaCoreSDK::Event("before_init");
    VornaCoreSDK::Init("my-app");
    VornaCoreSDK::SetAdid("adid-1");
    VornaCoreSDK::PaywallShown("ana ekran 🎉");

    std::map<std::string, EventData> events;
    for (const std::string& document : service.waitForDocuments(3)) {
        EventData event = eventOf(document);
        events.emplace(event.name, std::move(event));
    }
    ASSERT_THAT(events, SizeIs(3));
    EXPECT_EQ(*events["before_init"].deviceData.identity, (IdentityDescription{0, "", "", ""}));
    EXPECT_EQ(events["sdk_initialized"].deviceData.identity->userId, VornaCoreSDK::GetUserID());
    const EventData& shown = events["paywall_shown"];
    EXPECT_EQ(shown.customValue, "ana ekran 🎉");
    EXPECT_EQ(shown.deviceData.identity->adid, "adid-1");
    EXPECT_EQ(shown.deviceData.identity->appId, "my-app");
    EXPECT_EQ(shown.deviceData.device->bundle, "com.example.app");
    EXPECT_EQ(shown.deviceData.device->platform, "ios");
    EXPECT_NE(shown.deviceData.device->deviceModel, "");
    EXPECT_GT(shown.deviceData.totalDiskSpace, 0U);
    EXPECT_TRUE(shown.deviceData.timezoneOffset->starts_with("UTC"));
}

TEST(Delivery, SendsUnusualTextUnchanged) {
    const LocalService service;
    usePlatformOf(service);
    VornaCoreSDK::Init("my-app");
    const std::string quotes(1024UL * 1024, '"');
    const std::string controls("\x01\x1F\x7F\r\n\t\\\"\0", 9);
    VornaCoreSDK::Event(quotes, quotes);
    VornaCoreSDK::Event(controls, "👩‍👩‍👧‍👦");
    VornaCoreSDK::Event("", "");
    VornaCoreSDK::Event("dropped", "\xED\xA0\x80");
    VornaCoreSDK::Event("last");
    std::map<std::string, std::string> values;
    for (const std::string& document : service.waitForDocuments(5)) {
        const EventData event = eventOf(document);
        values[event.name] = event.customValue;
    }
    EXPECT_EQ(values, (std::map<std::string, std::string>{{"sdk_initialized", ""},
                                                          {quotes, quotes},
                                                          {controls, "👩‍👩‍👧‍👦"},
                                                          {"", ""},
                                                          {"last", ""}}));
}

// The sanitizers make everything several times slower; fewer events test the same.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr std::uint64_t eventsPerThread = 1'000;
#else
constexpr std::uint64_t eventsPerThread = 10'000;
#endif

TEST(Delivery, SendsEachEventOfEightThreadsExactlyOnceWhileInitAndSetAdidRun) {
    constexpr std::uint64_t threadCount = 8;
    const LocalService service;
    const auto http = usePlatformOf(service);
    std::vector<std::thread> threads;
    for (std::uint64_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([thread] {
            for (std::uint64_t count = 0; count < eventsPerThread; ++count) {
                VornaCoreSDK::Event("from_thread", thread, count, std::nullopt);
            }
        });
    }
    VornaCoreSDK::Init("my-app");
    for (int count = 0; count < 100; ++count) {
        VornaCoreSDK::SetAdid(std::to_string(count));
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    // With "sdk_initialized" and the configuration.
    ASSERT_TRUE(http->waitForCompletions(threadCount * eventsPerThread + 2));
    std::set<std::pair<std::string, std::string>> arrived;
    std::size_t documents = 0;
    for (const std::string& document : service.documents()) {
        if (document.starts_with(R"({"name":"from_thread")")) {
            ++documents;
            const std::size_t dates = document.find("\"createDate\"");
            arrived.emplace("", document.substr(dates, document.find(",\"customValue\"") - dates));
        }
    }
    EXPECT_EQ(documents, threadCount * eventsPerThread);
    EXPECT_EQ(arrived.size(), documents) << "none twice";
}

struct FaultCase {
    const char* name;
    const char* fault;
    const char* line;
    /// Whether the service stores the event although its response is faulty.
    bool recorded;
};

class Fault : public testing::TestWithParam<FaultCase> {};

TEST_P(Fault, IsLoggedAndTheNextEventArrives) {
    const LocalService service({"--fault", std::string("path=/v1/event,count=1,") + GetParam().fault});
    const auto http = usePlatformOf(service);
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("my-app");
    ASSERT_TRUE(http->waitForCompletions(2));
    VornaCoreSDK::Event("second");
    ASSERT_TRUE(http->waitForCompletions(3));
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_THAT(printed, HasSubstr(GetParam().line));
    EXPECT_THAT(printed, HasSubstr("[VornaSDK] Data sent successfully!\n"));
    const std::size_t expected = GetParam().recorded ? 2 : 1;
    ASSERT_THAT(service.waitForDocuments(expected), SizeIs(expected)) << "the first event is not retried";
    EXPECT_EQ(eventOf(service.documents().back()).name, "second");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Fault,
    testing::Values(FaultCase{"NoContent", "status=204", "{ status code: 204, headers { ", false},
                    FaultCase{"NotFound", "status=404", "{ status code: 404, headers { ", false},
                    FaultCase{"ServerError", "status=500",
                              "[VornaSDK] HTTP Error: Optional(<HTTPResponse: https://", false},
                    FaultCase{"CutBody", "cutBody", "[VornaSDK] Network error: ", true},
                    FaultCase{"RedirectToHttp", "status=301,location=http://127.0.0.1:1/v1/event",
                              "[VornaSDK] Network error: ", false}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(Delivery, LogsWhyTheServiceCannotBeReached) {
    PlatformOptions options = LocalService().options();  // already stopped: nothing listens there
    options.serviceURL = "https://127.0.0.1:1";
    Platform platform = makePlatform(options);
    const auto http = std::make_shared<WatchedHttpClient>(platform.httpClient);
    platform.httpClient = http;
    VornaCoreSDK::UsePlatform(std::move(platform));
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("my-app");
    ASSERT_TRUE(http->waitForCompletions(5)) << "four attempts for the configuration, one for the event";
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_THAT(printed, HasSubstr("[VornaSDK] Network error: "));
    EXPECT_THAT(printed, HasSubstr("[VornaSDK] Error fetching remote configs: "));
    EXPECT_THAT(printed,
                HasSubstr("[VornaSDK] Max retry attempts reached. Failed to fetch remote configs.\n"));
}

TEST(Delivery, RejectsAnUntrustedService) {
    const LocalService service;
    PlatformOptions options = service.options();
    options.certificateAuthorityFile.clear();
    Platform platform = makePlatform(options);
    const auto http = std::make_shared<WatchedHttpClient>(platform.httpClient);
    platform.httpClient = http;
    VornaCoreSDK::UsePlatform(std::move(platform));
    VornaCoreSDK::Init("my-app");
    ASSERT_TRUE(http->waitForCompletions(5));
    EXPECT_THAT(service.documents(), SizeIs(0));
}

TEST(Delivery, FetchesTheConfigurationOnTheNextAttemptAfterAFailure) {
    const LocalService service({"--fault", "path=/v1/config,count=1,status=500"});
    usePlatformOf(service);
    std::promise<bool> ready;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::RemoteConfigsReady, [&](const Notification& notification) {
            ready.set_value(std::get<bool>(notification.userInfo.at("remoteConfigFetched")));
        });
    VornaCoreSDK::Init("my-app");
    EXPECT_TRUE(ready.get_future().get());
}

}  // namespace
}  // namespace vorna
