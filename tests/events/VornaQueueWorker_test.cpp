// SPDX-License-Identifier: Apache-2.0
#include <vorna/events/VornaQueueWorker.h>

#include <tests/support/InMemoryPreferences.h>
#include <tests/support/RecordingHttpClient.h>
#include <tests/support/RefusedURLs.h>
#include <tests/support/Samples.h>

#include <vorna/platform/Log.h>
#include <vorna/platform/NotificationCenter.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

namespace vorna {
namespace {

using support::HttpAnswer;
using support::RecordingHttpClient;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view eventURL = "https://service.test/v1/event";

class QueueWorker : public testing::Test {
  protected:
    const std::shared_ptr<VornaTaskQueue> queue_ = std::make_shared<VornaTaskQueue>();
    const std::shared_ptr<EventListManager> list_ = std::make_shared<EventListManager>();
    const std::shared_ptr<RecordingHttpClient> http_ = std::make_shared<RecordingHttpClient>();
    const std::shared_ptr<VornaQueueWorker> worker_ = std::make_shared<VornaQueueWorker>(
        queue_, list_, http_,
        std::make_shared<RemoteConfigHelper>(http_, std::make_shared<support::InMemoryPreferences>(),
                                             "https://service.test/v1/config"),
        std::string(eventURL));

    /// The lines printed when the event is sent and, if there is an answer, completed.
    std::string printedFor(const EventData& event, std::optional<HttpAnswer> answer = std::nullopt,
                           std::string_view url = eventURL) {
        testing::internal::CaptureStdout();
        worker_->sendEvent(event, url);
        if (answer) {
            EXPECT_TRUE(http_->answer(std::move(*answer)));
        }
        return testing::internal::GetCapturedStdout();
    }
};

std::string bodyOf(const EventData& event) {
    return encode(event).value();
}

TEST_F(QueueWorker, PostsAnEventAsOneJsonDocument) {
    const EventData event = support::sampleEvent();
    worker_->sendEvent(event, eventURL);
    ASSERT_EQ(http_->requestCount(), 1U);
    const HttpRequest request = http_->requests().front();
    EXPECT_EQ(request.url.text(), eventURL);
    EXPECT_EQ(request.method, HttpMethod::post);
    EXPECT_THAT(request.headers, ElementsAre(HttpHeader{"Content-Type", "application/json"}));
    EXPECT_EQ(request.body, bodyOf(event));
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
}

TEST_F(QueueWorker, TriesAgainToParseAnAddressThatCouldNotBeParsed) {
    const auto http = std::make_shared<RecordingHttpClient>();
    std::shared_ptr<VornaQueueWorker> worker;
    {
        const support::RefusedURLs refused;
        worker = std::make_shared<VornaQueueWorker>(queue_, list_, http, nullptr, std::string(eventURL));
        worker->sendEvent(support::sampleEvent(), eventURL);
        EXPECT_EQ(http->requestCount(), 0U);
    }
    worker->sendEvent(support::sampleEvent(), eventURL);
    ASSERT_EQ(http->requestCount(), 1U);
    EXPECT_EQ(http->requests().front().url.text(), eventURL);
}

TEST_F(QueueWorker, ListsAndAnnouncesAnEventBeforeItsRequestIsMade) {
    std::vector<std::pair<std::size_t, std::size_t>> listedAndSent;
    bool empty = false;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        eventListUpdatedNotification, [&](const Notification& notification) {
            listedAndSent.emplace_back(list_->size(), http_->requestCount());
            empty = notification.userInfo.empty();
        });
    worker_->sendEvent(support::sampleEvent("a", "1"), eventURL);
    worker_->sendEvent(support::sampleEvent("b", ""), eventURL);
    EXPECT_THAT(listedAndSent, ElementsAre(std::pair(1U, 0U), std::pair(2U, 1U)));
    EXPECT_TRUE(empty);
    EXPECT_THAT(list_->eventList(), ElementsAre(EventShortData{"a", "1"}, EventShortData{"b", ""}));
}

TEST_F(QueueWorker, PrintsNothingOnAnyPathWhileDebugIsOff) {
    EXPECT_EQ(printedFor(support::sampleEvent(), HttpAnswer::status(200)), "");
    EXPECT_EQ(printedFor(support::sampleEvent(), HttpAnswer::status(500)), "");
    EXPECT_EQ(printedFor(support::sampleEvent(), HttpAnswer::failure("x")), "");
    EXPECT_EQ(printedFor(support::sampleEvent("\xFF")), "");
    EXPECT_EQ(printedFor(support::sampleEvent(), std::nullopt, ""), "");
}

struct OutcomeCase {
    const char* name;
    HttpAnswer answer;
    const char* line;
};

class Outcome : public QueueWorker, public testing::WithParamInterface<OutcomeCase> {};

TEST_P(Outcome, IsLoggedInOneLineAndNeverRetried) {
    log::enabled = true;
    const EventData event = support::sampleEvent();
    EXPECT_EQ(printedFor(event, GetParam().answer),
              "[VornaSDK] Event Data: " + bodyOf(event) + "\n[VornaSDK] " + GetParam().line + "\n");
    EXPECT_EQ(http_->requestCount(), 1U);
    EXPECT_EQ(list_->size(), 1U) << "listed regardless of the outcome";
}

INSTANTIATE_TEST_SUITE_P(
    Answers, Outcome,
    testing::Values(OutcomeCase{"Delivered", HttpAnswer::status(200, "{}"), "Data sent successfully!"},
                    OutcomeCase{"Created", HttpAnswer::status(201, "{}"),
                                "HTTP Error: Optional(<HTTPResponse: https://service.example/answered> "
                                "{ status code: 201, headers { } })"},
                    OutcomeCase{"NoContent", HttpAnswer::status(204),
                                "HTTP Error: Optional(<HTTPResponse: https://service.example/answered> "
                                "{ status code: 204, headers { } })"},
                    OutcomeCase{"NotFound", HttpAnswer::status(404, "no"),
                                "HTTP Error: Optional(<HTTPResponse: https://service.example/answered> "
                                "{ status code: 404, headers { } })"},
                    OutcomeCase{"ServerError", HttpAnswer::status(500),
                                "HTTP Error: Optional(<HTTPResponse: https://service.example/answered> "
                                "{ status code: 500, headers { } })"},
                    OutcomeCase{"NoResponse", HttpAnswer{"", std::nullopt, std::nullopt}, "HTTP Error: nil"},
                    OutcomeCase{"TransportError", HttpAnswer::failure("Could not resolve host: service.test"),
                                "Network error: Could not resolve host: service.test"},
                    OutcomeCase{
                        "ErrorAfterTheHead",
                        HttpAnswer{std::nullopt, HttpResponse{"https://h/", 200, {}}, HttpError{"cut off"}},
                        "Network error: cut off"},
                    OutcomeCase{"NothingAtAll", HttpAnswer{std::nullopt, std::nullopt, std::nullopt},
                                "Network error: No error description"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST_F(QueueWorker, DropsAnEventForAnInvalidAddress) {
    log::enabled = true;
    EXPECT_EQ(printedFor(support::sampleEvent(), std::nullopt, "no address"), "[VornaSDK] Invalid URL\n");
    EXPECT_EQ(http_->requestCount(), 0U);
    EXPECT_EQ(list_->size(), 0U);
}

TEST_F(QueueWorker, DropsAnEventThatCannotBeEncoded) {
    log::enabled = true;
    EXPECT_EQ(printedFor(support::sampleEvent("level_up", "\xED\xA0\x80")),
              "[VornaSDK] Error encoding eventData: customValue: the text is not UTF-8\n"
              "[VornaSDK] Error serializing event data\n");
    EXPECT_EQ(http_->requestCount(), 0U);
    EXPECT_EQ(list_->size(), 0U);
}

TEST_F(QueueWorker, SendsTasksFromBeforeAndAfterItsStartInOrder) {
    queue_->enqueue({VornaTaskTypes::event, support::sampleEvent("first")});
    queue_->enqueue({VornaTaskTypes::remoteConfig, RemoteConfigData{support::sampleDeviceMetadata()}});
    queue_->enqueue({VornaTaskTypes::event, support::sampleEvent("second")});
    EXPECT_EQ(http_->requestCount(), 0U);
    worker_->start();
    ASSERT_TRUE(http_->waitForRequests(3));
    // The queue is empty now and the worker checks it once a second.
    queue_->enqueue({VornaTaskTypes::event, support::sampleEvent("third")});
    ASSERT_TRUE(http_->waitForRequests(4));
    const std::vector<HttpRequest> requests = http_->requests();
    EXPECT_EQ(requests[0].body, bodyOf(support::sampleEvent("first")));
    EXPECT_EQ(requests[1].url.text(), "https://service.test/v1/config");
    EXPECT_EQ(requests[1].timeout, std::chrono::seconds(5));
    EXPECT_EQ(requests[2].body, bodyOf(support::sampleEvent("second")));
    EXPECT_EQ(requests[3].body, bodyOf(support::sampleEvent("third")));
}

TEST_F(QueueWorker, DoesNotWaitForAnAnswerBeforeTheNextEvent) {
    for (int count = 0; count < 1000; ++count) {
        queue_->enqueue({VornaTaskTypes::event, support::sampleEvent(std::to_string(count))});
    }
    worker_->start();
    ASSERT_TRUE(http_->waitForRequests(1000));
    EXPECT_EQ(http_->underWay(), 1000U);
}

TEST_F(QueueWorker, EndsItsThreadWhenItIsDestroyed) {
    const std::weak_ptr<RecordingHttpClient> watch = [] {
        const auto http = std::make_shared<RecordingHttpClient>();
        const auto queue = std::make_shared<VornaTaskQueue>();
        queue->enqueue({VornaTaskTypes::event, support::sampleEvent()});
        const auto worker = std::make_shared<VornaQueueWorker>(queue, std::make_shared<EventListManager>(),
                                                               http, nullptr, std::string(eventURL));
        worker->start();
        EXPECT_TRUE(http->waitForRequests(1));
        return std::weak_ptr(http);
    }();
    // The loop may hold the worker until it has checked the queue once more.
    while (!watch.expired()) {
        std::this_thread::yield();
    }
}

TEST_F(QueueWorker, AnnouncesOnItsOwnThread) {
    std::promise<std::thread::id> announced;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        eventListUpdatedNotification,
        [&](const Notification&) { announced.set_value(std::this_thread::get_id()); });
    queue_->enqueue({VornaTaskTypes::event, support::sampleEvent()});
    worker_->start();
    EXPECT_NE(announced.get_future().get(), std::this_thread::get_id());
}

/// A host's client that breaks its contract for two requests.
class ThrowingHttpClient final : public HttpClient {
  public:
    explicit ThrowingHttpClient(std::shared_ptr<HttpClient> client) : client_(std::move(client)) {}

    void start(HttpRequest request, Completion completion) override {
        switch (++count_) {
        case 1:
            throw std::runtime_error("no sockets today");
        case 2:
            throw 2;
        default:
            client_->start(std::move(request), std::move(completion));
        }
    }

  private:
    const std::shared_ptr<HttpClient> client_;
    int count_ = 0;
};

TEST_F(QueueWorker, ContinuesAfterAnythingThatAHostsClientThrows) {
    const auto worker = std::make_shared<VornaQueueWorker>(
        queue_, list_, std::make_shared<ThrowingHttpClient>(http_), nullptr, std::string(eventURL));
    for (const char* const name : {"first", "second", "third"}) {
        queue_->enqueue({VornaTaskTypes::event, support::sampleEvent(name)});
    }
    log::enabled = true;
    testing::internal::CaptureStdout();
    worker->start();
    const bool isSent = http_->waitForRequests(1);
    const std::string printed = testing::internal::GetCapturedStdout();
    ASSERT_TRUE(isSent);
    EXPECT_EQ(http_->requests().front().body, bodyOf(support::sampleEvent("third")));
    EXPECT_THAT(printed, HasSubstr("[VornaSDK] A task has failed: no sockets today\n"));
    EXPECT_THAT(printed, HasSubstr("[VornaSDK] A task has failed: an exception of unknown type\n"));
}

TEST_F(QueueWorker, IsFatalForATaskWithoutTheDataOfItsType) {
    const auto runWith = [this](VornaTask task) {
        queue_->enqueue(std::move(task));
        worker_->start();
        static_cast<void>(http_->waitForRequests(1));
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(runWith({VornaTaskTypes::event, std::monostate()}),
                 "Fatal error: a queued task does not hold the data of its type");
    EXPECT_DEATH(runWith({VornaTaskTypes::remoteConfig, support::sampleEvent()}), "does not hold the data");
}

}  // namespace
}  // namespace vorna
