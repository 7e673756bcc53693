// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/Admission.h>

#include <tests/platform/curl/CurlHttpClientOutcomes.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AdmissionOfRequests : public testing::Test {
  protected:
    void add(std::string_view url, std::string body, const std::stop_token& stop = {}) {
        HttpRequest request = posting(url, "");
        request.stop = stop;
        WaitingRequest waiting{RequestPlan::of(request), std::move(body), {}};
        admission_.add(waiting);
    }

    /// Bodies of the requests that may start now, in order.
    std::vector<std::string> admit() {
        std::vector<std::string> bodies;
        while (std::optional<Admission::Admitted> admitted = admission_.next()) {
            bodies.push_back(admitted->request.body);
            lane_ = admitted->lane;
        }
        EXPECT_FALSE(admission_.canAdmit());
        return bodies;
    }

    Admission admission_;
    /// Of the request admitted last.
    ServerLane* lane_ = nullptr;
};

constexpr std::string_view server = "https://service.test/v1/event";

TEST_F(AdmissionOfRequests, AdmitsOneRequestUntilTheServerIsReached) {
    for (const char* const body : {"1", "2", "3"}) {
        add(server, body);
    }
    EXPECT_THAT(admit(), ElementsAre("1"));
    lane_->requestSent({});
    EXPECT_THAT(admit(), ElementsAre("2", "3"));
}

TEST_F(AdmissionOfRequests, AdmitsOneAtATimeToAnUnreachableServer) {
    add(server, "1");
    add(server, "2");
    EXPECT_THAT(admit(), ElementsAre("1"));
    lane_->requestEnded(false);
    EXPECT_THAT(admit(), ElementsAre("2"));
}

TEST_F(AdmissionOfRequests, StartsOverWhenAServerBecomesUnreachable) {
    add(server, "1");
    admit();
    lane_->requestSent({});
    lane_->requestEnded(true);
    add(server, "2");
    admit();
    lane_->requestEnded(false);
    add(server, "3");
    add(server, "4");
    EXPECT_THAT(admit(), ElementsAre("3"));
}

TEST_F(AdmissionOfRequests, FillsTheConnectionsOfAServer) {
    for (int number = 0; number < 200; ++number) {
        add(server, std::to_string(number));
    }
    admit();
    lane_->requestSent({});
    EXPECT_EQ(admit().size(), 5U);
    EXPECT_EQ(lane_->underWay, 6U);
    lane_->multiplexes = true;
    EXPECT_EQ(admit().size(), 122U);
    EXPECT_EQ(lane_->underWay, 128U);
    lane_->requestEnded(true);
    EXPECT_THAT(admit(), ElementsAre("128"));
}

TEST_F(AdmissionOfRequests, HasALaneForEachSchemeHostAndPort) {
    const std::vector<std::string_view> urls = {"https://service.test/a", "https://service.test:443/b",
                                                "http://service.test/", "https://other.test/",
                                                "https://service.test:8443/"};
    for (const std::string_view url : urls) {
        add(url, std::string(url));
    }
    EXPECT_EQ(admit().size(), urls.size() - 1) << "the first two share a lane";
}

TEST_F(AdmissionOfRequests, RemovesCancelledWaitingRequests) {
    std::stop_source source;
    add(server, "1", source.get_token());
    add(server, "2", source.get_token());
    add(server, "3");
    EXPECT_TRUE(admission_.hasCancellable());
    EXPECT_THAT(admit(), ElementsAre("1"));

    std::vector<std::string> ended;
    const auto end = [&](const WaitingRequest& request) { ended.push_back(request.body); };
    EXPECT_FALSE(admission_.removeCancelled(end));
    source.request_stop();
    EXPECT_TRUE(admission_.removeCancelled(end));
    EXPECT_THAT(ended, ElementsAre("2"));
    EXPECT_FALSE(admission_.hasCancellable());
    lane_->requestSent({});
    EXPECT_THAT(admit(), ElementsAre("3"));
}

TEST_F(AdmissionOfRequests, DoesNotCountAdmittedRequestsAsCancellable) {
    {
        const std::stop_source source;
        add(server, "1", source.get_token());
    }
    EXPECT_TRUE(admission_.hasCancellable());
    admit();
    EXPECT_FALSE(admission_.hasCancellable()) << "though its stop source has gone meanwhile";
}

TEST_F(AdmissionOfRequests, RemovesAllWaitingRequests) {
    add(server, "1");
    add(server, "2");
    add("https://other.test/", "3");
    std::vector<std::string> ended;
    admission_.removeAll([&](const WaitingRequest& request) { ended.push_back(request.body); });
    EXPECT_THAT(ended, testing::UnorderedElementsAre("1", "2", "3"));
    EXPECT_THAT(admit(), IsEmpty());
}

}  // namespace
}  // namespace vorna
