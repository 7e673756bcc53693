// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Statistics.h>

#include <gmock/gmock.h>

namespace vorna::devserver {
namespace {

using testing::HasSubstr;

TEST(Statistics, CountConnectionsRequestsAndEvents) {
    Statistics statistics;
    statistics.connectionOpened();
    statistics.connectionOpened();
    statistics.connectionClosed();
    statistics.countRequest("/v1/event");
    statistics.countRequest("/v1/event");
    statistics.countRequest("/v1/config");
    statistics.countStatus(200);
    statistics.countStatus(400);
    statistics.countUnanswered();
    statistics.countRecordedEvent();
    statistics.countRejectedEvent();
    EXPECT_EQ(statistics.toJson(),
              R"({"connections":{"accepted":2,"open":1},"events":{"recorded":1,"rejected":1},)"
              R"("requests":{"total":3,"unanswered":1,"paths":{"/v1/config":1,"/v1/event":2}},)"
              R"("statuses":{"200":1,"400":1}})");
    EXPECT_EQ(statistics.summary(), "1 event recorded, 1 rejected; 3 requests on 2 connections");
}

TEST(Statistics, StayBoundedForAnyNumberOfPaths) {
    Statistics statistics;
    for (int i = 0; i < 5000; ++i) {
        statistics.countRequest(std::string("/").append(std::to_string(i)));
    }
    statistics.countRequest("/1");
    EXPECT_THAT(statistics.toJson(), HasSubstr("\"total\":5001"));
    EXPECT_THAT(statistics.toJson(), HasSubstr("\"(other)\":4000"));
    EXPECT_THAT(statistics.toJson(), HasSubstr("\"/1\":2"));
}

}  // namespace
}  // namespace vorna::devserver
