// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/VornaCoreSDK.h>

#include <tests/support/RecordedEvents.h>
#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

namespace vorna {
namespace {

using support::RecordedEvents;
using testing::HasSubstr;
using testing::SizeIs;

constexpr std::string_view configURL = "https://service.test/v1/config";
constexpr std::string_view eventURL = "https://service.test/v1/event";

std::vector<HttpRequest> requestsTo(const RecordedEvents& host, std::string_view url) {
    std::vector<HttpRequest> requests = host.http->requests();
    std::erase_if(requests, [url](const HttpRequest& request) { return request.url.text() != url; });
    return requests;
}

EventData eventOf(const HttpRequest& request) {
    return decodeEventData(request.body).value();
}

// The instance and its accessors

TEST(Facade, HasNoIdentityBeforeInit) {
    const RecordedEvents host;
    EXPECT_FALSE(VornaCoreSDK::GetAppID());
    EXPECT_FALSE(VornaCoreSDK::GetUserID());
    EXPECT_FALSE(VornaCoreSDK::GetAdid());
    EXPECT_FALSE(VornaCoreSDK::GetInstallTime());
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("key", "default"), "default");
}

TEST(Facade, IsCreatedByAGetter) {
    const RecordedEvents host;
    static_cast<void>(VornaCoreSDK::GetAppID());
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::UsePlatform({});
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] UsePlatform was called after another operation; the call is ignored\n");
}

TEST(Facade, IsCreatedOnceByConcurrentCalls) {
    const RecordedEvents host;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([] { VornaCoreSDK::Event("from_everywhere"); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(RecordedEvents::take(), SizeIs(8));
}

TEST(CurrentTimestamp, IsInWholeSecondsTruncated) {
    const RecordedEvents host;
    host.clock->set(1'704'067'200.9);
    EXPECT_EQ(VornaCoreSDK::CurrentTimestamp(), 1'704'067'200U);
}

TEST(CurrentTimestamp, AbortsIfTheClockIsBroken) {
    const RecordedEvents host;
    host.clock->set(-1);
    EXPECT_DEATH(VornaCoreSDK::CurrentTimestamp(),
                 "Fatal error: the clock returned a date outside the range");
    EXPECT_DEATH(VornaCoreSDK::Event("x"), "Fatal error: the clock returned a date outside the range");
}

TEST(SetAdid, KeepsEmptyText) {
    const RecordedEvents host;
    VornaCoreSDK::SetAdid("");
    EXPECT_EQ(VornaCoreSDK::GetAdid(), "");
}

TEST(SetAdid, ReplacesThePreviousOneAndRecordsNothing) {
    const RecordedEvents host;
    VornaCoreSDK::SetAdid("a");
    VornaCoreSDK::SetAdid("b");
    EXPECT_EQ(VornaCoreSDK::GetAdid(), "b");
    EXPECT_THAT(RecordedEvents::takeTasks(), SizeIs(0));
}

TEST(SetAdid, LogsAndIgnoresTextThatIsNotUtf8) {
    const RecordedEvents host;
    VornaCoreSDK::SetAdid("good");
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::SetAdid("\xFF");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] SetAdid: adid is not UTF-8; the call is ignored\n");
    EXPECT_EQ(VornaCoreSDK::GetAdid(), "good");
}

TEST(Debug, ReadsAndWritesLikeABool) {
    EXPECT_FALSE(VornaCoreSDK::debug);
    VornaCoreSDK::debug = true;
    EXPECT_TRUE(VornaCoreSDK::debug);
}

// Init

TEST(Init, LoadsTheIdentityThenFetchesThenRecordsItsEvent) {
    const RecordedEvents host;
    VornaCoreSDK::Init("my-app");
    EXPECT_EQ(VornaCoreSDK::GetAppID(), "my-app");
    ASSERT_TRUE(VornaCoreSDK::GetUserID());
    EXPECT_THAT(*VornaCoreSDK::GetUserID(), SizeIs(26));
    EXPECT_EQ(VornaCoreSDK::GetInstallTime(), 1'704'067'200U);

    ASSERT_TRUE(host.http->waitForRequests(2));
    const std::vector<HttpRequest> requests = host.http->requests();
    EXPECT_EQ(requests[0].url.text(), configURL);
    EXPECT_THAT(requests[0].body,
                HasSubstr(R"("userId":")" + *VornaCoreSDK::GetUserID() + R"(","appId":"my-app")"));
    EXPECT_EQ(requests[1].url.text(), eventURL);
    const EventData event = eventOf(requests[1]);
    EXPECT_EQ(event.name, "sdk_initialized");
    EXPECT_EQ(event.customValue, "");
    EXPECT_EQ(event.deviceData.identity->userId, VornaCoreSDK::GetUserID());
    EXPECT_EQ(event.deviceData.identity->installTime, VornaCoreSDK::GetInstallTime());
}

TEST(Init, CalledAgainKeepsTheFirstIdentifierAndFetchesAgain) {
    const RecordedEvents host;
    VornaCoreSDK::Init("A");
    VornaCoreSDK::Init("B");
    VornaCoreSDK::Event("last");
    EXPECT_EQ(VornaCoreSDK::GetAppID(), "A");
    ASSERT_TRUE(host.http->waitForRequests(4));
    EXPECT_THAT(requestsTo(host, configURL), SizeIs(2));
    const std::vector<HttpRequest> events = requestsTo(host, eventURL);
    ASSERT_THAT(events, SizeIs(2));
    EXPECT_EQ(eventOf(events[0]).name, "sdk_initialized");
    EXPECT_EQ(eventOf(events[1]).name, "last");
}

TEST(Init, CalledAgainRegistersNoObserverTwice) {
    const RecordedEvents host;
    VornaCoreSDK::Init("A");
    VornaCoreSDK::Init("A");
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    NotificationCenter::defaultCenter().post(UIApplicationDidEnterBackgroundNotification);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[VornaSDK] appDidEnterBackground\n");
}

/// A store that fails as instructed, or lets the test inspect the library while it is being read.
class WatchedCredentialStore final : public CredentialStore {
  public:
    explicit WatchedCredentialStore(std::function<void()> onRead) : onRead_(std::move(onRead)) {}

    Result<std::string, CredentialStatus> read(std::string_view, std::string_view) override {
        onRead_();
        return R"({"userId":"u","installTime":5})";
    }

    Result<void, CredentialStatus> remove(std::string_view, std::string_view) override { return {}; }

    Result<void, CredentialStatus> add(std::string_view, std::string_view, std::string_view) override {
        return {};
    }

  private:
    const std::function<void()> onRead_;
};

/// The fake platform with that store.
void useStore(const RecordedEvents& host, std::function<void()> onRead) {
    Platform platform = host.platform();
    platform.credentialStore = std::make_shared<WatchedCredentialStore>(std::move(onRead));
    VornaCoreSDK::UsePlatform(std::move(platform));
}

TEST(Init, ObservesAndSendsBeforeLoadingTheIdentityAndThenTheConfiguration) {
    const RecordedEvents host;
    host.preferences->put("VornaRemoteConfigs", {{"a", "old"}});
    int reads = 0;
    useStore(host, [&] {
        ++reads;
        EXPECT_EQ(VornaCoreSDK::GetAppID(), "my-app");
        EXPECT_TRUE(host.http->waitForRequests(1)) << "what was recorded before is on its way";
        NotificationCenter::defaultCenter().post(UIApplicationDidBecomeActiveNotification);
        EXPECT_TRUE(SharedInstance::get().lifecycle.currentSession());
        EXPECT_FALSE(VornaCoreSDK::GetUserID());
        EXPECT_FALSE(VornaCoreSDK::GetInstallTime());
        EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "default");
    });
    VornaCoreSDK::Event("early");
    VornaCoreSDK::Init("my-app");
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(VornaCoreSDK::GetUserID(), "u");
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "old");
}

TEST(Init, IsResumedByTheNextCallAfterAPortHasThrown) {
    const RecordedEvents host;
    bool fails = true;
    useStore(host, [&] {
        if (std::exchange(fails, false)) {
            throw std::runtime_error("no store today");
        }
    });
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("my-app");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[VornaSDK] Init has failed: no store today\n");
    VornaCoreSDK::debug = false;
    EXPECT_FALSE(VornaCoreSDK::GetUserID());

    VornaCoreSDK::Init("my-app");
    EXPECT_EQ(VornaCoreSDK::GetUserID(), "u");
    ASSERT_TRUE(host.http->waitForRequests(2));
    EXPECT_THAT(requestsTo(host, configURL), SizeIs(1));
    EXPECT_EQ(eventOf(requestsTo(host, eventURL).at(0)).name, "sdk_initialized");
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    NotificationCenter::defaultCenter().post(UIApplicationDidEnterBackgroundNotification);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[VornaSDK] appDidEnterBackground\n");
}

/// The lines printed by the calling thread; the worker's come at any time.
std::vector<std::string> linesOfInit(const std::string& printed) {
    std::vector<std::string> lines;
    std::string line;
    for (std::istringstream stream(printed); std::getline(stream, line);) {
        if (line == "[VornaSDK] VornaSDK initialized" || line.find("Event called") != std::string::npos) {
            lines.push_back(line);
        }
    }
    return lines;
}

TEST(Init, TreatsADataFolderBehindADanglingLinkAsUnwritable) {
    const support::TemporaryFolder temporary;
    std::filesystem::create_symlink("/nonexistent/x", temporary.path() / "card");
    PlatformOptions options;
    options.dataDirectory = temporary.path() / "card" / "app";
    options.credentialStore = CredentialStoreKind::file;
    const RecordedEvents host;
    Platform platform = makePlatform(options);
    platform.httpClient = host.http;
    VornaCoreSDK::UsePlatform(std::move(platform));
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("my-app");
    EXPECT_THAT(
        testing::internal::GetCapturedStdout(),
        testing::StartsWith("Error reading from Keychain: -25300\nError saving to Keychain: -25291\n"));
    EXPECT_TRUE(VornaCoreSDK::GetUserID());
    ASSERT_TRUE(host.http->waitForRequests(2));
    host.http->answer(support::HttpAnswer::status(200, R"({"configs":{"a":"1"}})"));
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "1");
    EXPECT_THAT(support::namesIn(temporary.path()), testing::ElementsAre("card"));
}

TEST(Init, PrintsNothingWhileDebugIsOff) {
    const RecordedEvents host;
    // A first run always reports that there is no identity, so provide one.
    std::ignore =
        host.credentials->add("io.vorna.vornasdk", "userDetails", R"({"userId":"u","installTime":5})");
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("my-app");
    EXPECT_TRUE(host.http->waitForRequests(2));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Init, LogsThatItHasRunAndThenRecordsItsEvent) {
    const RecordedEvents host;
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("my-app");
    VornaCoreSDK::Init("my-app");
    EXPECT_THAT(linesOfInit(testing::internal::GetCapturedStdout()),
                testing::ElementsAre("[VornaSDK] VornaSDK initialized",
                                     "[VornaSDK] Event called  -> sdk_initialized"));
}

TEST(Init, IgnoresAnIdentifierThatIsNotUtf8AndCanBeCalledAgain) {
    const RecordedEvents host;
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("\xED\xA0\x80");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] Init: appID is not UTF-8; the call is ignored\n");
    EXPECT_FALSE(VornaCoreSDK::GetAppID());
    VornaCoreSDK::debug = false;
    VornaCoreSDK::Init("proper");
    EXPECT_EQ(VornaCoreSDK::GetAppID(), "proper");
    EXPECT_TRUE(host.http->waitForRequests(2));
}

TEST(Init, CalledAgainIgnoresItsIdentifierWhateverItIs) {
    const RecordedEvents host;
    VornaCoreSDK::Init("A");
    ASSERT_TRUE(host.http->waitForRequests(2));
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Init("\xFF\xFE");
    VornaCoreSDK::Init(nullptr);
    VornaCoreSDK::Init("");
    ASSERT_TRUE(host.http->waitForRequests(5));
    EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::Not(HasSubstr("ignored")));
    EXPECT_THAT(requestsTo(host, configURL), SizeIs(4));
    EXPECT_THAT(requestsTo(host, eventURL), SizeIs(1));
    EXPECT_EQ(VornaCoreSDK::GetAppID(), "A");
}

TEST(Init, AbortsIfTheIdentityCannotBeDecoded) {
    const RecordedEvents host;
    std::ignore = host.credentials->add("io.vorna.vornasdk", "userDetails", "{}");
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(VornaCoreSDK::Init("my-app"), "Fatal error: ");
}

// Events

TEST(Event, BeforeInitIsSentLaterWithTheStateAtItsTime) {
    const RecordedEvents host;
    VornaCoreSDK::Event("early", "value");
    EXPECT_EQ(host.http->requestCount(), 0U);
    VornaCoreSDK::Init("my-app");
    ASSERT_TRUE(host.http->waitForRequests(3));
    const EventData event = eventOf(host.http->requests()[0]);
    EXPECT_EQ(event.name, "early");
    EXPECT_EQ(*event.deviceData.identity, (IdentityDescription{0, "", "", ""}));
}

TEST(Event, ReadsTheClockForEachDate) {
    const RecordedEvents host;
    host.clock->set(1000.75);
    VornaCoreSDK::Event("same_second");
    host.clock->tickBy(0.5);
    VornaCoreSDK::Event("across_seconds");
    const std::vector<EventData> events = RecordedEvents::take();
    EXPECT_EQ(std::pair(events[0].createDate, events[0].endDate),
              std::pair(std::uint64_t{1000}, std::uint64_t{1000}));
    EXPECT_EQ(std::pair(events[1].createDate, events[1].endDate),
              std::pair(std::uint64_t{1000}, std::uint64_t{1001}));
}

TEST(Event, RecordsAMissingCustomValueAsEmpty) {
    const RecordedEvents host;
    VornaCoreSDK::Event("a", std::nullopt);
    VornaCoreSDK::Event("a");
    VornaCoreSDK::Event("a", "");
    const std::vector<EventData> events = RecordedEvents::take();
    ASSERT_THAT(events, SizeIs(3));
    EXPECT_EQ(events[0], events[1]);
    EXPECT_EQ(events[1], events[2]);
}

TEST(Event, RecordsANullCustomValueAsEmpty) {
    const RecordedEvents host;
    const char* const none = nullptr;
    VornaCoreSDK::Event("a", nullptr);
    VornaCoreSDK::Event("a", none);
    VornaCoreSDK::Event("a", 1, 2, nullptr);
    VornaCoreSDK::Event("a", 1, 2, none);
    VornaCoreSDK::Event("a", {});
    VornaCoreSDK::Event("a", std::optional<std::string>());
    const std::vector<EventData> events = RecordedEvents::take();
    ASSERT_THAT(events, SizeIs(6));
    for (const EventData& event : events) {
        EXPECT_EQ(event.name, "a");
        EXPECT_EQ(event.customValue, "");
    }
}

TEST(NullText, InPlaceOfRequiredTextIsLoggedAndTheCallIgnored) {
    struct Row {
        const char* what;
        void (*call)();
    };

    const RecordedEvents host;
    VornaCoreSDK::SetAdid("kept");
    VornaCoreSDK::debug = true;
    for (const Row& row : std::to_array<Row>({
             {"Init: appID", [] { VornaCoreSDK::Init(nullptr); }},
             {"SetAdid: adid", [] { VornaCoreSDK::SetAdid(nullptr); }},
             {"Event: name", [] { VornaCoreSDK::Event(nullptr); }},
             {"Event: name", [] { VornaCoreSDK::Event(nullptr, "value"); }},
             {"Event: name", [] { VornaCoreSDK::Event(nullptr, 1, 2, "value"); }},
             {"OnboardingStep: step", [] { VornaCoreSDK::OnboardingStep(nullptr); }},
             {"LoginSuccess: source", [] { VornaCoreSDK::LoginSuccess(nullptr); }},
             {"PaywallShown: paywall", [] { VornaCoreSDK::PaywallShown(nullptr); }},
             {"PaywallClosed: paywall", [] { VornaCoreSDK::PaywallClosed(nullptr); }},
             {"PaywallAttempted: paywall", [] { VornaCoreSDK::PaywallAttempted(nullptr); }},
             {"PaywallPurchased: paywall", [] { VornaCoreSDK::PaywallPurchased(nullptr); }},
             {"PaywallCancelled: paywall", [] { VornaCoreSDK::PaywallCancelled(nullptr); }},
             {"TabClicked: tab", [] { VornaCoreSDK::TabClicked(nullptr); }},
             {"FeatureClicked: feature", [] { VornaCoreSDK::FeatureClicked(nullptr); }},
             {"ShowPaywall: jsonString", [] { VornaCoreSDK::ShowPaywall(nullptr); }},
             {"ShowOnboarding: jsonString", [] { VornaCoreSDK::ShowOnboarding(nullptr); }},
         })) {
        testing::internal::CaptureStdout();
        row.call();
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "[VornaSDK] " + std::string(row.what) + " is null; the call is ignored\n");
    }
    EXPECT_THAT(RecordedEvents::take(), SizeIs(0));
    EXPECT_EQ(VornaCoreSDK::GetAdid(), "kept");
    EXPECT_FALSE(VornaCoreSDK::GetAppID());
}

TEST(NullText, AsADefaultValueIsTheEmptyText) {
    const RecordedEvents host;
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("key", nullptr), "");
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig(nullptr, "default"), "default");
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig(nullptr, nullptr), "");
}

TEST(Event, RecordsTheGivenDatesUnchecked) {
    const RecordedEvents host;
    VornaCoreSDK::Event("x", 200, 100, std::nullopt);
    VornaCoreSDK::Event("x", 0, UINT64_MAX, "v");
    const std::vector<EventData> events = RecordedEvents::take();
    EXPECT_EQ(events[0].createDate, 200U);
    EXPECT_EQ(events[0].endDate, 100U);
    EXPECT_EQ(events[0].customValue, "");
    EXPECT_EQ(events[1].endDate, UINT64_MAX);
    EXPECT_EQ(events[1].customValue, "v");
}

TEST(Event, RecordsAnyName) {
    const RecordedEvents host;
    const std::string long_name(1024UL * 1024, 'n');
    for (const std::string& name : {std::string(), long_name, std::string("\0\xFF\n", 3)}) {
        VornaCoreSDK::Event(name);
        EXPECT_EQ(RecordedEvents::take().at(0).name, name);
    }
}

TEST(Event, LogsItsNameWhileDebugIsOn) {
    const RecordedEvents host;
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Event("plain");
    VornaCoreSDK::Event("timed", 1, 2, "v");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[VornaSDK] Event called  -> plain\n"
                                                      "[VornaSDK] Event called  -> timed\n");
}

TEST(Event, ContainsTheAdvertisingIdentifierAtItsTime) {
    const RecordedEvents host;
    VornaCoreSDK::Event("before");
    VornaCoreSDK::SetAdid("adid-1");
    VornaCoreSDK::Event("after");
    const std::vector<EventData> events = RecordedEvents::take();
    EXPECT_EQ(events[0].deviceData.identity->adid, "");
    EXPECT_EQ(events[1].deviceData.identity->adid, "adid-1");
}

TEST(Event, FromEightThreadsIsQueuedOnceAndInOrderWhileInitAndSetAdidRun) {
    constexpr int threadCount = 8;
// The sanitizers make everything several times slower; fewer events test the same.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    constexpr std::uint64_t eachCount = 1'000;
#else
    constexpr std::uint64_t eachCount = 10'000;
#endif
    const RecordedEvents host;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([name = "thread" + std::to_string(thread)] {
            for (std::uint64_t count = 0; count < eachCount; ++count) {
                VornaCoreSDK::Event(name, count, count, std::nullopt);
            }
        });
    }
    threads.emplace_back([] {
        VornaCoreSDK::Init("my-app");
        for (int count = 0; count < 1000; ++count) {
            VornaCoreSDK::SetAdid(std::to_string(count));
            static_cast<void>(VornaCoreSDK::GetUserID());
        }
        VornaCoreSDK::Init("again");
    });
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_TRUE(host.http->waitForRequests(threadCount * eachCount + 3));
    std::map<std::string, std::uint64_t> next;
    for (const HttpRequest& request : requestsTo(host, eventURL)) {
        // Only the beginning: decoding eighty thousand documents would take too long.
        const std::string_view body = request.body;
        if (!body.starts_with(R"({"name":"thread)")) {
            continue;
        }
        const std::string name(body.substr(9, 7));
        EXPECT_THAT(std::string(body.substr(0, 60)),
                    HasSubstr("\"createDate\":" + std::to_string(next[name]++) + ","));
    }
    EXPECT_THAT(next, SizeIs(threadCount));
    for (const auto& [name, count] : next) {
        EXPECT_EQ(count, eachCount) << name;
    }
}

/// A host's port that breaks its contract.
class ThrowingSystem final : public System {
  public:
    std::shared_ptr<const SystemFacts> facts() const override { throw std::runtime_error("no facts today"); }

    void enableBatteryMonitoring() override {}

    void setScreen(const ScreenFacts&) override {}

    void supplyBundle(const BundleFacts&) override {}

    std::optional<FileSystemSize> homeFileSystem() const override { return std::nullopt; }

    std::optional<std::string> documentsDirectory() const override { return "/documents"; }

    ItemCreation creation(const std::string&) const override { return {}; }

    std::int32_t secondsFromGMT(Date) const override { return 0; }
};

TEST(Event, CatchesExceptionsOfTheHostsPorts) {
    Platform platform;
    platform.system = std::make_shared<ThrowingSystem>();
    VornaCoreSDK::UsePlatform(std::move(platform));
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    VornaCoreSDK::Event("x");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[VornaSDK] Event called  -> x\n[VornaSDK] Event has failed: no facts today\n");
}

// Remote configuration

TEST(GetRemoteConfig, ReturnsTheCachedValueUntilTheFetchedOneArrives) {
    const RecordedEvents host;
    host.preferences->put("VornaRemoteConfigs", {{"a", "old"}, {"empty", ""}});
    VornaCoreSDK::Init("my-app");
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "old");
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("empty", "default"), "");
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("A", "default"), "default");

    std::vector<bool> outcomes;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::RemoteConfigsReady, [&](const Notification& notification) {
            EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "new");
            EXPECT_THAT(host.preferences->saves(), SizeIs(0)) << "announced before it is saved";
            outcomes.push_back(std::get<bool>(notification.userInfo.at("remoteConfigFetched")));
        });
    ASSERT_TRUE(host.http->waitForRequests(2));
    host.http->answer(support::HttpAnswer::status(200, R"({"configs":{"a":"new"}})"));
    EXPECT_EQ(outcomes, std::vector<bool>{true});
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("empty", "default"), "default") << "the table is replaced whole";
    EXPECT_THAT(host.preferences->saves(), SizeIs(1));
}

TEST(GetRemoteConfig, KeepsItsValuesIfTheFetchFails) {
    const RecordedEvents host;
    host.preferences->put("VornaRemoteConfigs", {{"a", "old"}});
    std::vector<bool> outcomes;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::RemoteConfigsReady, [&](const Notification& notification) {
            outcomes.push_back(std::get<bool>(notification.userInfo.at("remoteConfigFetched")));
        });
    VornaCoreSDK::Init("my-app");
    ASSERT_TRUE(host.http->waitForRequests(2));
    // The answers to the configuration request, the event, and the further attempts.
    for (int answer = 0; answer < 5; ++answer) {
        EXPECT_TRUE(host.http->answer(support::HttpAnswer::status(503)));
    }
    EXPECT_THAT(requestsTo(host, configURL), SizeIs(4));
    EXPECT_EQ(outcomes, std::vector<bool>{false});
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "old");
}

TEST(GetRemoteConfig, ReturnsDefaultsIfTheConfigurationIsEmpty) {
    const RecordedEvents host;
    host.preferences->put("VornaRemoteConfigs", {{"a", "old"}});
    VornaCoreSDK::Init("my-app");
    ASSERT_TRUE(host.http->waitForRequests(2));
    host.http->answer(support::HttpAnswer::status(200, R"({"configs":{}})"));
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "default");
}

struct StrangeNotification {
    const char* name;
    UserInfo userInfo;
};

class RemoteConfigsFetched : public testing::TestWithParam<StrangeNotification> {};

TEST_P(RemoteConfigsFetched, WithoutATableIsIgnored) {
    const RecordedEvents host;
    VornaCoreSDK::Init("my-app");
    int ready = 0;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        VornaCoreSDK::RemoteConfigsReady, [&](const Notification&) { ++ready; });
    NotificationCenter::defaultCenter().post("Vorna_RemoteConfigsFetched", GetParam().userInfo);
    EXPECT_EQ(ready, 0);
    EXPECT_EQ(VornaCoreSDK::GetRemoteConfig("a", "default"), "default");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RemoteConfigsFetched,
    testing::Values(StrangeNotification{"NoUserInfo", {}},
                    StrangeNotification{"NoConfigs",
                                        {{"other", std::map<std::string, std::string>{{"a", "1"}}}}},
                    StrangeNotification{"ConfigsOfAnotherKind", {{"configs", std::string("a")}}}),
    [](const auto& testCase) { return testCase.param.name; });

// Names

TEST(NotificationNames, AreAsPublished) {
    const std::map<std::string_view, std::string_view> names = {
        {VornaCoreSDK::RemoteConfigsReady, "Vorna_RemoteConfigsReady"},
        {VornaCoreSDK::PaidProductClicked, "Vorna_PaidProductClicked"},
        {VornaCoreSDK::OnboardingScreensFinished, "Vorna_OnboardingScreensFinished"},
        {VornaCoreSDK::PaywallScreenClosed, "Vorna_PaywallScreenClosed"},
        {VornaCoreSDK::OnboardingScreenClosed, "Vorna_OnboardingScreenClosed"},
        {VornaCoreSDK::PaywallScreenFinished, "Vorna_PaywallScreenFinished"},
        {VornaCoreSDK::RestorePurchaseClicked, "Vorna_RestorePurchaseClicked"},
        {VornaCoreSDK::EventListUpdated, "Vorna_EventListUpdated"},
    };
    EXPECT_THAT(names, SizeIs(8));
    for (const auto& [name, expected] : names) {
        EXPECT_EQ(name, expected);
    }
}

TEST(SignalNames, AreAsPublished) {
    const RecordedEvents host;
    VornaCoreSDK::Init("my-app");
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    for (const char* const signal :
         {"UIApplicationDidFinishLaunchingNotification", "UIApplicationWillEnterForegroundNotification",
          "UIApplicationDidBecomeActiveNotification", "UIApplicationDidReceiveMemoryWarningNotification",
          "UIApplicationWillResignActiveNotification", "UIApplicationDidEnterBackgroundNotification"}) {
        NotificationCenter::defaultCenter().post(signal);
    }
    std::vector<std::string> handled;
    std::istringstream printed(testing::internal::GetCapturedStdout());
    for (std::string line; std::getline(printed, line);) {
        if (line.starts_with("[VornaSDK] app")) {
            handled.push_back(line.substr(11));
        }
    }
    EXPECT_THAT(handled, testing::ElementsAre("appDidFinishLaunching", "appWillEnterForeground",
                                              "appDidBecomeActive", "appDidReceiveMemoryWarning",
                                              "appWillResignActive", "appDidEnterBackground"));
}

}  // namespace
}  // namespace vorna
