// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigHelper.h>

#include <tests/support/ConfigTables.h>
#include <tests/support/InMemoryPreferences.h>
#include <tests/support/RecordingHttpClient.h>
#include <tests/support/RefusedURLs.h>
#include <tests/support/Samples.h>

#include <vorna/config/RemoteConfigNotifications.h>
#include <vorna/config/RemoteConfigRequest.h>
#include <vorna/json/Encoding.h>
#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>

#include <gtest/gtest.h>

#include <chrono>
#include <latch>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace vorna {
namespace {

using Configs = std::map<std::string, std::string>;
using Lines = std::vector<std::string>;
using support::entriesOf;
using support::HttpAnswer;
using support::InMemoryPreferences;
using support::RecordingHttpClient;

constexpr const char* address = "https://service.example/v1/config";

Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// A helper between a client and preferences controlled by the test, with everything that it does recorded.
class RemoteConfigFetch : public testing::Test {
  protected:
    RemoteConfigFetch() {
        log::enabled = true;
        testing::internal::CaptureStdout();
        fetched_ = NotificationCenter::defaultCenter().addObserver(
            remoteConfigsFetchedNotification, [this](const Notification& notification) {
                happened_.emplace_back("fetched");
                tables_.push_back(support::announcedIn(notification));
                EXPECT_EQ(notification.userInfo.size(), 1U);
            });
        ready_ = NotificationCenter::defaultCenter().addObserver(
            remoteConfigsReadyNotification, [this](const Notification& notification) {
                EXPECT_EQ(notification.userInfo.size(), 1U);
                happened_.emplace_back(
                    std::get<bool>(notification.userInfo.at("remoteConfigFetched")) ? "ready" : "not ready");
            });
        preferences_->onSave([this] { happened_.emplace_back("saves"); });
    }

    void TearDown() override {
        if (isCapturing_) {
            lines();
        }
    }

    RemoteConfigHelper helper(const std::string& url = address) { return {client_, preferences_, url}; }

    void useClient(RecordingHttpClient::Completes completes, std::vector<HttpAnswer> script) {
        client_ = std::make_shared<RecordingHttpClient>(completes, std::move(script));
    }

    /// The lines printed since the last call.
    Lines lines() {
        isCapturing_ = false;
        return linesOf(testing::internal::GetCapturedStdout());
    }

    std::shared_ptr<RecordingHttpClient> client_ = std::make_shared<RecordingHttpClient>();
    std::shared_ptr<InMemoryPreferences> preferences_ = std::make_shared<InMemoryPreferences>();
    RemoteConfigData data_{support::sampleDeviceMetadata()};
    /// In order: notifications and saves.
    Lines happened_;
    std::vector<Configs> tables_;

  private:
    bool isCapturing_ = true;
    NotificationCenter::Observation fetched_;
    NotificationCenter::Observation ready_;
};

TEST_F(RemoteConfigFetch, PostsTheDeviceDataWithAFiveSecondTimeoutAndOnlyAContentTypeHeader) {
    helper().fetchRemoteConfigs(data_, 0);
    ASSERT_EQ(client_->requestCount(), 1U);
    const HttpRequest request = client_->requests().front();
    EXPECT_EQ(request.url.text(), address);
    EXPECT_EQ(request.method, HttpMethod::post);
    EXPECT_EQ(request.timeout, std::chrono::seconds(5));
    EXPECT_EQ(request.headers, (std::vector<HttpHeader>{{"Content-Type", "application/json"}}));
    EXPECT_EQ(request.body, json::encode(RemoteConfigRequest{data_.deviceData}).value());
    EXPECT_EQ(request.responseLimit, 16U * 1024 * 1024);
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(RemoteConfigFetch, TriesAgainToParseAnAddressThatCouldNotBeParsed) {
    std::optional<RemoteConfigHelper> remote;
    {
        const support::RefusedURLs refused;
        remote.emplace(client_, preferences_, address);
        remote->fetchRemoteConfigs(data_, 0);
        EXPECT_EQ(client_->requestCount(), 0U);
    }
    remote->fetchRemoteConfigs(data_, 0);
    ASSERT_EQ(client_->requestCount(), 1U);
    EXPECT_EQ(client_->requests().front().url.text(), address);
    EXPECT_EQ(lines(), Lines{"[VornaSDK] Invalid URL"});
}

TEST_F(RemoteConfigFetch, AnnouncesTheTableBeforeSavingIt) {
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    EXPECT_TRUE(client_->answer(HttpAnswer::status(200, R"({"configs":{"theme":"dark","empty":""}})")));
    EXPECT_EQ(happened_, (Lines{"fetched", "saves"}));
    EXPECT_EQ(tables_, (std::vector<Configs>{{{"theme", "dark"}, {"empty", ""}}}));
    const auto saves = preferences_->saves();
    ASSERT_EQ(saves.size(), 1U);
    EXPECT_EQ(saves.front().first, "VornaRemoteConfigs");
    EXPECT_EQ(saves.front().second, (Configs{{"theme", "dark"}, {"empty", ""}}));
    EXPECT_EQ(client_->requestCount(), 1U);
    EXPECT_EQ(lines(), (Lines{"[VornaSDK] Config received successfully!",
                              "[VornaSDK] Configs saved to UserDefaults"}));
}

TEST_F(RemoteConfigFetch, OverwritesTheSavedTableWithAnEmptyOne) {
    preferences_->put("VornaRemoteConfigs", {{"theme", "dark"}});
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    client_->answer(HttpAnswer::status(200, R"({"configs":{}})"));
    EXPECT_EQ(tables_, std::vector<Configs>{{}});
    EXPECT_EQ(preferences_->table("VornaRemoteConfigs"), Configs{});
    EXPECT_EQ(entriesOf(remote.loadConfigsFromLocal()), Configs{});
}

TEST_F(RemoteConfigFetch, LogsThatTheTableCouldNotBeSaved) {
    preferences_->failSaves();
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    client_->answer(HttpAnswer::status(200, R"({"configs":{"a":"1"}})"));
    EXPECT_EQ(happened_, (Lines{"fetched", "saves"}));
    EXPECT_EQ(lines(),
              (Lines{"[VornaSDK] Config received successfully!",
                     "[VornaSDK] Configs could not be saved to UserDefaults: No space left on device"}));
}

TEST_F(RemoteConfigFetch, AcceptsABodyWithoutAnHttpResponse) {
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    client_->answer({R"({"configs":{"a":"1"}})", std::nullopt, std::nullopt});
    EXPECT_EQ(tables_, (std::vector<Configs>{{{"a", "1"}}}));
    EXPECT_EQ(lines(), (Lines{"[VornaSDK] Configs saved to UserDefaults"}));
}

TEST_F(RemoteConfigFetch, PrintsNothingWhileDebugIsOff) {
    log::enabled = false;
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    client_->answer(HttpAnswer::status(500));
    client_->answer(HttpAnswer::failure("no route to host"));
    client_->answer(HttpAnswer::status(200, "?"));
    client_->answer(HttpAnswer::status(200, R"({"configs":{}})"));
    static_cast<void>(remote.loadConfigsFromLocal());
    helper("no URL").fetchRemoteConfigs(data_, 0);
    EXPECT_EQ(happened_, (Lines{"fetched", "saves"}));
    EXPECT_EQ(lines(), Lines{});
}

struct Failure {
    const char* name;
    HttpAnswer answer;
    /// The lines that each attempt prints before the one that announces the next step.
    Lines lines;
};

std::ostream& operator<<(std::ostream& stream, const Failure& failure) {
    return stream << failure.name;
}

class RemoteConfigFailure : public RemoteConfigFetch, public testing::WithParamInterface<Failure> {
  protected:
    static Lines linesOfFourAttempts() {
        Lines expected;
        for (const char* const next :
             {"Retrying fetch... Attempt 1", "Retrying fetch... Attempt 2", "Retrying fetch... Attempt 3",
              "Max retry attempts reached. Failed to fetch remote configs."}) {
            for (const std::string& line : GetParam().lines) {
                expected.push_back("[VornaSDK] " + line);
            }
            expected.push_back(std::string("[VornaSDK] ") + next);
        }
        return expected;
    }
};

TEST_P(RemoteConfigFailure, LeadsToFourConsecutiveAttemptsAndAFailureNotification) {
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    for (std::size_t attempt = 1; attempt <= 4; ++attempt) {
        ASSERT_EQ(client_->requestCount(), attempt);
        ASSERT_EQ(client_->underWay(), 1U);
        ASSERT_EQ(happened_, Lines{});
        ASSERT_TRUE(client_->answer(GetParam().answer));
    }
    EXPECT_FALSE(client_->answer(GetParam().answer));
    EXPECT_EQ(client_->requestCount(), 4U);
    EXPECT_EQ(happened_, (Lines{"not ready"}));
    EXPECT_EQ(lines(), linesOfFourAttempts());
    for (const HttpRequest& request : client_->requests()) {
        EXPECT_EQ(request.body, client_->requests().front().body);
        EXPECT_EQ(request.timeout, std::chrono::seconds(5));
    }
}

TEST_P(RemoteConfigFailure, IsHandledAlikeIfTheClientCompletesOnTheCallingThread) {
    useClient(RecordingHttpClient::Completes::onCallingThread, {GetParam().answer});
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    EXPECT_EQ(client_->requestCount(), 4U);
    EXPECT_EQ(client_->mostUnderWay(), 1U);
    EXPECT_EQ(happened_, (Lines{"not ready"}));
    EXPECT_EQ(lines(), linesOfFourAttempts());
}

TEST_P(RemoteConfigFailure, LeavesTheSavedTableUnchanged) {
    preferences_->put("VornaRemoteConfigs", {{"theme", "dark"}});
    useClient(RecordingHttpClient::Completes::onCallingThread, {GetParam().answer});
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    EXPECT_EQ(happened_, (Lines{"not ready"}));
    EXPECT_EQ(entriesOf(remote.loadConfigsFromLocal()), (Configs{{"theme", "dark"}}));
}

constexpr const char* received = "Config received successfully!";

std::string httpErrorLine(int status) {
    return "HTTP Error: Optional(<HTTPResponse: https://service.example/answered> { status code: " +
           std::to_string(status) + ", headers { } })";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RemoteConfigFailure,
    testing::Values(
        Failure{"TransportError",
                HttpAnswer::failure("Couldn't connect to server"),
                {"Error fetching remote configs: Couldn't connect to server"}},
        Failure{"TransportErrorAfterAGoodStatus",
                {std::nullopt, HttpResponse{address, 200, {}}, HttpError{"Cut off"}},
                {"Error fetching remote configs: Cut off"}},
        Failure{"Status500", HttpAnswer::status(500, R"({"configs":{"a":"1"}})"), {httpErrorLine(500)}},
        Failure{"Status204WithoutBody", HttpAnswer::status(204), {httpErrorLine(204)}},
        Failure{
            "Status201WithAValidBody", HttpAnswer::status(201, R"({"configs":{}})"), {httpErrorLine(201)}},
        Failure{
            "Status204WithAValidBody", HttpAnswer::status(204, R"({"configs":{}})"), {httpErrorLine(204)}},
        Failure{"NoBody",
                {std::nullopt, HttpResponse{address, 200, {}}, std::nullopt},
                {received, "No data received"}},
        Failure{"NoBodyAndNoResponse", {std::nullopt, std::nullopt, std::nullopt}, {"No data received"}},
        Failure{"EmptyBody",
                HttpAnswer::status(200),
                {received, "Decoding error: line 1, column 1: incomplete JSON"}},
        Failure{"NumberInTheTable",
                HttpAnswer::status(200, R"({"configs":{"a":"1","b":2}})"),
                {received, "Decoding error: configs.b: expected a string, found a number"}},
        Failure{"NoTable", HttpAnswer::status(200, "{}"), {received, "Decoding error: configs: missing"}},
        Failure{"UndecodableBodyThatIsNotHttp",
                {"{}", std::nullopt, std::nullopt},
                {"Decoding error: configs: missing"}}),
    [](const auto& row) { return row.param.name; });

TEST_F(RemoteConfigFetch, StopsAfterTheFirstSuccessfulAttempt) {
    useClient(RecordingHttpClient::Completes::onCallingThread,
              {HttpAnswer::failure("timed out"), HttpAnswer::status(503), HttpAnswer::status(200, "<html>"),
               HttpAnswer::status(200, R"({"configs":{"a":"1"}})")});
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    EXPECT_EQ(client_->requestCount(), 4U);
    EXPECT_EQ(happened_, (Lines{"fetched", "saves"}));
    EXPECT_EQ(lines(),
              (Lines{"[VornaSDK] Error fetching remote configs: timed out",
                     "[VornaSDK] Retrying fetch... Attempt 1", "[VornaSDK] " + httpErrorLine(503),
                     "[VornaSDK] Retrying fetch... Attempt 2", "[VornaSDK] Config received successfully!",
                     "[VornaSDK] Decoding error: line 1, column 1: syntax error",
                     "[VornaSDK] Retrying fetch... Attempt 3", "[VornaSDK] Config received successfully!",
                     "[VornaSDK] Configs saved to UserDefaults"}));
}

TEST_F(RemoteConfigFetch, CountsAttemptsFromTheGivenNumber) {
    useClient(RecordingHttpClient::Completes::onCallingThread, {HttpAnswer::status(500)});
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 3);
    EXPECT_EQ(client_->requestCount(), 1U);
    remote.fetchRemoteConfigs(data_, 2);
    EXPECT_EQ(client_->requestCount(), 3U);
    EXPECT_EQ(happened_, (Lines{"not ready", "not ready"}));
}

TEST_F(RemoteConfigFetch, CountsAttemptsPerTask) {
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    remote.fetchRemoteConfigs(data_, 0);
    for (std::size_t answered = 0; answered < 8; ++answered) {
        EXPECT_LE(client_->underWay(), 2U);
        ASSERT_TRUE(client_->answer(HttpAnswer::status(500)));
    }
    EXPECT_EQ(client_->requestCount(), 8U);
    EXPECT_EQ(happened_, (Lines{"not ready", "not ready"}));
}

TEST_F(RemoteConfigFetch, CanBeRestartedByAnObserverOfItsEnd) {
    RemoteConfigHelper remote = helper();
    bool again = true;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        remoteConfigsReadyNotification, [&](const Notification&) {
            if (std::exchange(again, false)) {
                remote.fetchRemoteConfigs(data_, 0);
            }
        });
    remote.fetchRemoteConfigs(data_, 0);
    for (int attempt = 0; attempt < 4; ++attempt) {
        client_->answer(HttpAnswer::status(500));
    }
    client_->answer(HttpAnswer::status(200, R"({"configs":{}})"));
    EXPECT_EQ(happened_, (Lines{"not ready", "fetched", "saves"}));
    EXPECT_EQ(client_->requestCount(), 5U);
}

TEST_F(RemoteConfigFetch, SendsNothingToAnInvalidUrl) {
    for (const char* const url : {"", "v1/config", "https://", "https://ser vice/v1/config"}) {
        helper(url).fetchRemoteConfigs(data_, 0);
    }
    EXPECT_EQ(client_->requestCount(), 0U);
    EXPECT_EQ(happened_, Lines{});
    EXPECT_EQ(lines(), (Lines{"[VornaSDK] Invalid URL", "[VornaSDK] Invalid URL", "[VornaSDK] Invalid URL",
                              "[VornaSDK] Invalid URL"}));
}

TEST_F(RemoteConfigFetch, SendsNothingIfTheRequestCannotBeEncoded) {
    data_.deviceData.device.edit().screenWidth = std::numeric_limits<double>::quiet_NaN();
    helper().fetchRemoteConfigs(data_, 0);
    EXPECT_EQ(client_->requestCount(), 0U);
    EXPECT_EQ(happened_, Lines{});
    EXPECT_EQ(lines(),
              (Lines{"[VornaSDK] Error serializing request body: deviceData.screenWidth: JSON cannot "
                     "represent the number"}));
}

TEST_F(RemoteConfigFetch, IsDroppedSilentlyIfTheHelperIsDestroyedBeforeTheAnswer) {
    {
        RemoteConfigHelper remote = helper();
        remote.fetchRemoteConfigs(data_, 0);
        remote.fetchRemoteConfigs(data_, 0);
    }
    EXPECT_TRUE(client_->answer(HttpAnswer::status(200, R"({"configs":{"a":"1"}})")));
    EXPECT_TRUE(client_->answer(HttpAnswer::status(500)));
    EXPECT_EQ(client_->requestCount(), 2U);
    EXPECT_EQ(happened_, Lines{});
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(RemoteConfigFetch, DoesNotKeepTheClientAlive) {
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    const std::weak_ptr<RecordingHttpClient> client = client_;
    remote = RemoteConfigHelper(std::make_shared<RecordingHttpClient>(), preferences_, address);
    client_.reset();
    EXPECT_TRUE(client.expired());
}

TEST_F(RemoteConfigFetch, CompletesOnTheClientsThreadWhileTheHelperIsDestroyed) {
    // The last owner of the client may then be its own thread.
    for (int round = 0; round < 200; ++round) {
        useClient(RecordingHttpClient::Completes::onOwnThread, {HttpAnswer::status(500)});
        auto remote = std::make_unique<RemoteConfigHelper>(helper());
        remote->fetchRemoteConfigs(data_, 0);
        EXPECT_TRUE(client_->waitForRequests(1));
        client_.reset();
        remote.reset();
    }
    // Lines that the client's thread prints as it ends cannot affect the next test: each has its own process.
}

TEST_F(RemoteConfigFetch, RunsEntirelyOnTheClientsThread) {
    useClient(
        RecordingHttpClient::Completes::onOwnThread,
        {HttpAnswer::status(500), HttpAnswer::status(500), HttpAnswer::status(500), HttpAnswer::status(500)});
    std::latch ended(1);
    std::thread::id thread;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        remoteConfigsReadyNotification, [&](const Notification&) {
            thread = std::this_thread::get_id();
            ended.count_down();
        });
    RemoteConfigHelper remote = helper();
    remote.fetchRemoteConfigs(data_, 0);
    ended.wait();
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_EQ(client_->requestCount(), 4U);
    EXPECT_EQ(client_->mostUnderWay(), 1U);
}

class RemoteConfigCache : public RemoteConfigFetch {};

TEST_F(RemoteConfigCache, ReturnsTheLastSavedTable) {
    RemoteConfigHelper remote = helper();
    remote.saveToLocal(support::tableOf({{"a", "1"}, {"b", "2"}}));
    remote.saveToLocal(support::tableOf({{"b", ""}}));
    EXPECT_EQ(entriesOf(helper().loadConfigsFromLocal()), (Configs{{"b", ""}}));
    EXPECT_EQ(lines(),
              (Lines{"[VornaSDK] Configs saved to UserDefaults", "[VornaSDK] Configs saved to UserDefaults",
                     "[VornaSDK] Configs loaded from UserDefaults"}));
}

TEST_F(RemoteConfigCache, MayBeAnEmptyTable) {
    preferences_->put("VornaRemoteConfigs", Configs{});
    EXPECT_EQ(entriesOf(helper().loadConfigsFromLocal()), Configs{});
    EXPECT_EQ(lines(), (Lines{"[VornaSDK] Configs loaded from UserDefaults"}));
}

TEST_F(RemoteConfigCache, IsInitiallyAbsent) {
    EXPECT_EQ(entriesOf(helper().loadConfigsFromLocal()), std::nullopt);
    EXPECT_EQ(lines(), (Lines{"[VornaSDK] No configs found in UserDefaults"}));
}

TEST(RemoteConfigHelperConstants, HaveTheirFixedValues) {
    EXPECT_EQ(RemoteConfigHelper::maxRetryCount, 3);
    EXPECT_EQ(RemoteConfigHelper::userDefaultsKey, "VornaRemoteConfigs");
    EXPECT_EQ(remoteConfigsFetchedNotification, "Vorna_RemoteConfigsFetched");
    EXPECT_EQ(remoteConfigsReadyNotification, "Vorna_RemoteConfigsReady");
}

}  // namespace
}  // namespace vorna
