// SPDX-License-Identifier: Apache-2.0
#include <vorna/core/Lifecycle.h>

#include <tests/support/RecordedEvents.h>

#include <vorna/events/ULID.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace vorna {
namespace {

using support::RecordedEvents;
using testing::IsEmpty;
using testing::SizeIs;

/// A lifecycle without a running worker, so that the queue can be inspected.
class ApplicationLife : public testing::Test {
  protected:
    RecordedEvents host_;
    Lifecycle& lifecycle_ = SharedInstance::get().lifecycle;

    ApplicationLife() { lifecycle_.observe(); }

    static void post(std::string_view signal) { NotificationCenter::defaultCenter().post(signal); }

    void becomeActiveAt(double seconds) {
        host_.clock->set(seconds);
        post(UIApplicationDidBecomeActiveNotification);
    }

    void resignActiveAt(double seconds) {
        host_.clock->set(seconds);
        post(UIApplicationWillResignActiveNotification);
    }

    static std::size_t fetchesQueued() {
        std::size_t count = 0;
        for (const VornaTask& task : RecordedEvents::takeTasks()) {
            count += task.type == VornaTaskTypes::remoteConfig ? 1 : 0;
        }
        return count;
    }
};

TEST_F(ApplicationLife, StartsASessionOnActivation) {
    EXPECT_FALSE(lifecycle_.currentSession());
    becomeActiveAt(1000.9);
    ASSERT_TRUE(lifecycle_.currentSession());
    EXPECT_EQ(lifecycle_.currentSession()->startTime, 1000U);
    const std::optional<ULID> identifier = ULID::fromString(lifecycle_.currentSession()->sessionID);
    ASSERT_TRUE(identifier);
    EXPECT_EQ(identifier->ulidString(), lifecycle_.currentSession()->sessionID);
    EXPECT_EQ(identifier->timestamp(), Date{1000.9});
    EXPECT_THAT(RecordedEvents::takeTasks(), IsEmpty());
}

TEST_F(ApplicationLife, SendsTheSessionDirectlyOnResignation) {
    becomeActiveAt(1000);
    resignActiveAt(1065);
    ASSERT_EQ(host_.http->requestCount(), 1U) << "sent before the handler returned";
    const HttpRequest request = host_.http->requests().front();
    EXPECT_EQ(request.url.text(), "https://service.test/v1/event");
    const EventData event = decodeEventData(request.body).value();
    EXPECT_EQ(event.name, "vorna_session");
    EXPECT_EQ(event.createDate, 1000U);
    EXPECT_EQ(event.endDate, 1065U);
    EXPECT_EQ(event.customValue, "");
    EXPECT_THAT(RecordedEvents::takeTasks(), IsEmpty());
    EXPECT_FALSE(lifecycle_.currentSession());
    EXPECT_EQ(SharedInstance::get().eventListManager->eventList().at(0).name, "vorna_session");
}

TEST_F(ApplicationLife, SendsNothingOnResignationWithoutASession) {
    resignActiveAt(1000);
    EXPECT_EQ(host_.http->requestCount(), 0U);
}

TEST_F(ApplicationLife, QueuesALeftoverSessionAndStartsAnother) {
    becomeActiveAt(1000);
    const std::string first = lifecycle_.currentSession()->sessionID;
    becomeActiveAt(1030);
    const std::vector<EventData> events = RecordedEvents::take();
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].name, "vorna_session");
    EXPECT_EQ(events[0].createDate, 1000U);
    EXPECT_EQ(events[0].endDate, 1030U);
    EXPECT_EQ(events[0].customValue, "");
    EXPECT_EQ(host_.http->requestCount(), 0U);
    EXPECT_EQ(lifecycle_.currentSession()->startTime, 1030U);
    EXPECT_NE(lifecycle_.currentSession()->sessionID, first);
}

TEST_F(ApplicationLife, RefetchesTheConfigurationAfterFiveMinutesOfInactivity) {
    resignActiveAt(2000);
    becomeActiveAt(2299);
    EXPECT_EQ(fetchesQueued(), 0U);
    resignActiveAt(2000);
    becomeActiveAt(2300);
    EXPECT_EQ(fetchesQueued(), 1U);
}

TEST_F(ApplicationLife, MeasuresInactivityFromTheLastResignation) {
    resignActiveAt(1000);
    resignActiveAt(1200);
    becomeActiveAt(1499);
    EXPECT_EQ(fetchesQueued(), 0U);
    resignActiveAt(2000);
    becomeActiveAt(2001);
    becomeActiveAt(9000);
    EXPECT_EQ(fetchesQueued(), 0U);
}

TEST_F(ApplicationLife, AbortsIfTheClockWasSetBackDuringInactivity) {
    resignActiveAt(2000);
    EXPECT_DEATH(becomeActiveAt(1999),
                 "Fatal error: the clock was set back while the application was inactive");
    becomeActiveAt(2000);
}

TEST_F(ApplicationLife, RecordsAMemoryWarning) {
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    post(UIApplicationDidReceiveMemoryWarningNotification);
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(),
        "[VornaSDK] Event called  -> appDidReceiveMemoryWarning\n[VornaSDK] appDidReceiveMemoryWarning\n");
    const std::vector<EventData> events = RecordedEvents::take();
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(events[0].name, "appDidReceiveMemoryWarning");
    EXPECT_EQ(events[0].customValue, "");
}

struct SignalCase {
    std::string_view signal;
    const char* line;
};

class SignalThatIsOnlyLogged : public ApplicationLife, public testing::WithParamInterface<SignalCase> {};

TEST_P(SignalThatIsOnlyLogged, RecordsNothingAndPrintsOnlyWhileDebugIsOn) {
    testing::internal::CaptureStdout();
    post(GetParam().signal);
    VornaCoreSDK::debug = true;
    post(GetParam().signal);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), GetParam().line);
    EXPECT_THAT(RecordedEvents::takeTasks(), IsEmpty());
    EXPECT_EQ(host_.http->requestCount(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Signals, SignalThatIsOnlyLogged,
                         testing::Values(SignalCase{UIApplicationDidEnterBackgroundNotification,
                                                    "[VornaSDK] appDidEnterBackground\n"},
                                         SignalCase{UIApplicationWillEnterForegroundNotification,
                                                    "[VornaSDK] appWillEnterForeground\n"},
                                         SignalCase{UIApplicationDidFinishLaunchingNotification,
                                                    "[VornaSDK] appDidFinishLaunching\n"}));

TEST_F(ApplicationLife, LogsActivationAndResignation) {
    VornaCoreSDK::debug = true;
    testing::internal::CaptureStdout();
    becomeActiveAt(1000);
    resignActiveAt(1065);
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(printed.starts_with(
        "[VornaSDK] appDidBecomeActive\n[VornaSDK] Direct Event called  -> vorna_session\n"
        "[VornaSDK] Event Data: {\"name\":\"vorna_session\""))
        << printed;
    EXPECT_TRUE(printed.ends_with("[VornaSDK] appWillResignActive\n")) << printed;
}

TEST(SignalsBeforeInit, AreNotObserved) {
    const RecordedEvents host;
    static_cast<void>(VornaCoreSDK::GetAppID());
    NotificationCenter::defaultCenter().post(UIApplicationDidReceiveMemoryWarningNotification);
    EXPECT_THAT(RecordedEvents::takeTasks(), IsEmpty());
}

TEST(SignalsAfterInit, OpenAndReportASession) {
    const RecordedEvents host;
    VornaCoreSDK::Init("my-app");
    ASSERT_TRUE(host.http->waitForRequests(2));
    EXPECT_FALSE(SharedInstance::get().lifecycle.currentSession()) << "Init opens none";
    NotificationCenter::defaultCenter().post(UIApplicationDidBecomeActiveNotification);
    NotificationCenter::defaultCenter().post(UIApplicationWillResignActiveNotification);
    EXPECT_EQ(host.http->requestCount(), 3U);
}

}  // namespace
}  // namespace vorna
