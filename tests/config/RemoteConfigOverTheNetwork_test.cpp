// SPDX-License-Identifier: Apache-2.0
#include <vorna/config/RemoteConfigHelper.h>

#include <tests/support/RawServer.h>
#include <tests/support/RealFetch.h>

#include <vorna/config/RemoteConfigRequest.h>
#include <vorna/json/Encoding.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ostream>
#include <string>
#include <vector>

namespace vorna {
namespace {

using support::Lines;
using support::linesOf;
using support::RawServer;

/// The server is scripted by the test.
class RemoteConfigOverTheNetwork : public support::RealFetch {};

TEST_F(RemoteConfigOverTheNetwork, SendsTheExpectedPostWithoutIdentifyingHeaders) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, R"({"configs":{"theme":"dark"}})"));
    });
    fetch(server.url("/v1/config"));
    EXPECT_EQ(tables_, (std::vector<Configs>{{{"theme", "dark"}}}));
    ASSERT_EQ(server.connectionCount(), 1U);

    const std::string request = server.received().front();
    const std::size_t endOfHead = request.find("\r\n\r\n");
    ASSERT_NE(endOfHead, std::string::npos);
    EXPECT_EQ(request.substr(endOfHead + 4), json::encode(RemoteConfigRequest{data_.deviceData}).value());
    Lines head = linesOf(request.substr(0, endOfHead));
    EXPECT_EQ(head.front(), "POST /v1/config HTTP/1.1\r");
    std::vector<std::string> names;
    for (std::size_t line = 1; line < head.size(); ++line) {
        names.push_back(head[line].substr(0, head[line].find(':')));
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"Accept-Encoding", "Content-Length", "Content-Type", "Host"}));
    EXPECT_NE(request.find("\r\nContent-Type: application/json\r\n"), std::string::npos);
}

TEST_F(RemoteConfigOverTheNetwork, MakesFourNonOverlappingRequestsIfTheServerKeepsFailing) {
    std::atomic<int> unanswered = 0;
    std::atomic<int> mostUnanswered = 0;
    std::atomic<int> requests = 0;
    RawServer server([&](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            ++requests;
            mostUnanswered = std::max(mostUnanswered.load(), ++unanswered);
            --unanswered;
            connection.send("HTTP/1.1 503 Busy\r\nContent-Length: 4\r\n\r\nbusy");
        }
    });
    fetch(server.url("/v1/config"));
    EXPECT_EQ(requests, 4);
    EXPECT_EQ(mostUnanswered, 1);
    EXPECT_TRUE(tables_.empty());
    const std::string error = "[VornaSDK] HTTP Error: Optional(<HTTPResponse: " + server.url("/v1/config") +
                              "> { status code: 503, headers { Content-Length: 4 } })";
    EXPECT_EQ(lines(), (Lines{error, "[VornaSDK] Retrying fetch... Attempt 1", error,
                              "[VornaSDK] Retrying fetch... Attempt 2", error,
                              "[VornaSDK] Retrying fetch... Attempt 3", error,
                              "[VornaSDK] Max retry attempts reached. Failed to fetch remote configs."}));
}

TEST_F(RemoteConfigOverTheNetwork, GivesUpAfterFourAttemptsOnAClosedPort) {
    std::string url;
    {
        const RawServer server([](RawServer::Connection&) {});
        url = server.url("/v1/config");
    }
    fetch(url);
    const Lines printed = lines();
    ASSERT_EQ(printed.size(), 8U);
    for (std::size_t attempt = 0; attempt < 4; ++attempt) {
        EXPECT_TRUE(printed[2 * attempt].starts_with("[VornaSDK] Error fetching remote configs: "))
            << attempt;
    }
    EXPECT_EQ(printed.back(), "[VornaSDK] Max retry attempts reached. Failed to fetch remote configs.");
}

TEST_F(RemoteConfigOverTheNetwork, RetriesFiveSecondsAfterAnUnansweredRequest) {
    std::chrono::steady_clock::time_point first;
    std::chrono::steady_clock::time_point second;
    RawServer server([&](RawServer::Connection& connection) {
        connection.readRequest();
        if (connection.number() == 0) {
            first = std::chrono::steady_clock::now();
            connection.hang();
            return;
        }
        second = std::chrono::steady_clock::now();
        connection.send(RawServer::httpAnswer(200, R"({"configs":{"a":"1"}})"));
    });
    fetch(server.url("/v1/config"));
    EXPECT_EQ(server.connectionCount(), 2U);
    EXPECT_EQ(tables_, (std::vector<Configs>{{{"a", "1"}}}));
    EXPECT_GE(second - first, std::chrono::milliseconds(4'900));
    EXPECT_LE(second - first, std::chrono::milliseconds(9'000));
    const Lines printed = lines();
    ASSERT_GE(printed.size(), 3U);
    EXPECT_TRUE(printed[0].starts_with("[VornaSDK] Error fetching remote configs: ")) << printed[0];
    EXPECT_EQ(printed[1], "[VornaSDK] Retrying fetch... Attempt 1");
    EXPECT_EQ(printed[2], "[VornaSDK] Config received successfully!");
}

TEST_F(RemoteConfigOverTheNetwork, AcceptsATableOfAHundredThousandKeys) {
    Configs configs;
    for (int index = 0; index < 100'000; ++index) {
        const std::string key = "key_" + std::to_string(index);
        configs.emplace(key, "value of " + key);
    }
    const std::string body = support::configAnswer(configs);
    RawServer server([&](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, body));
    });
    fetch(server.url("/v1/config"));
    ASSERT_EQ(tables_.size(), 1U);
    EXPECT_TRUE(tables_.front() == configs);
    EXPECT_EQ(preferences_->saves().size(), 1U);
}

/// The first connection's behaviour; the second always returns a table.
struct Fault {
    const char* name;
    void (*script)(RawServer::Connection&);
    /// The beginning of the line about the first attempt, after the lines before it.
    Lines lines;
};

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
    return stream << fault.name;
}

class RemoteConfigFault : public RemoteConfigOverTheNetwork, public testing::WithParamInterface<Fault> {};

TEST_P(RemoteConfigFault, IsFollowedByTheNextAttempt) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        if (connection.number() == 0) {
            GetParam().script(connection);
        } else {
            connection.send(RawServer::httpAnswer(200, R"({"configs":{"a":"1"}})"));
        }
    });
    fetch(server.url("/v1/config"));
    EXPECT_EQ(tables_, (std::vector<Configs>{{{"a", "1"}}}));
    EXPECT_EQ(server.connectionCount(), 2U);
    const Lines printed = lines();
    const std::size_t count = GetParam().lines.size();
    ASSERT_GT(printed.size(), count + 1);
    for (std::size_t line = 0; line < count; ++line) {
        EXPECT_TRUE(printed[line].starts_with("[VornaSDK] " + GetParam().lines[line])) << printed[line];
    }
    EXPECT_EQ(printed[count], "[VornaSDK] Retrying fetch... Attempt 1");
    EXPECT_EQ(printed[count + 1], "[VornaSDK] Config received successfully!");
}

constexpr const char* transport = "Error fetching remote configs: ";
constexpr const char* received = "Config received successfully!";
constexpr const char* undecodable = "Decoding error: line 1, column ";

INSTANTIATE_TEST_SUITE_P(
    Scripts, RemoteConfigFault,
    testing::Values(
        Fault{"ClosedWithoutAnAnswer", [](RawServer::Connection&) {}, {transport}},
        Fault{"Reset", [](RawServer::Connection& connection) { connection.reset(); }, {transport}},
        Fault{"CutInTheStatusLine",
              [](RawServer::Connection& connection) { connection.send("HTTP/1.1 2"); },
              {transport}},
        Fault{"CutInTheBody",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"configs\":{");
              },
              {transport}},
        Fault{"ResetInTheBody",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"configs\":{");
                  connection.reset();
              },
              {transport}},
        Fault{"CutInAChunk",
              [](RawServer::Connection& connection) {
                  connection.send(
                      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n20\r\n{\"configs\":{");
              },
              {transport}},
        // Without a length the end of the connection ends the body, so only the text shows the truncation.
        Fault{"CutBodyOfUnknownLength",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\n\r\n{\"configs\":{\"a\":\"1\"");
              },
              {received, undecodable}},
        Fault{"NoHttp",
              [](RawServer::Connection& connection) { connection.send("SSH-2.0-server\r\n"); },
              {transport}},
        Fault{"NotUtf8",
              [](RawServer::Connection& connection) {
                  connection.send(RawServer::httpAnswer(200, "{\"configs\":{\"a\":\"\xC3\x28\"}}"));
              },
              {received, undecodable}},
        Fault{"ByteOrderMark",
              [](RawServer::Connection& connection) {
                  connection.send(RawServer::httpAnswer(200, "\xEF\xBB\xBF{\"configs\":{}}"));
              },
              {received, undecodable}},
        Fault{"NestedDeeperThan512",
              [](RawServer::Connection& connection) {
                  connection.send(
                      RawServer::httpAnswer(200, "{\"configs\":{},\"more\":" + std::string(512, '[') +
                                                     std::string(512, ']') + "}"));
              },
              {received, undecodable}},
        Fault{"EmptyBody",
              [](RawServer::Connection& connection) { connection.send(RawServer::httpAnswer(200, "")); },
              {received, undecodable}},
        Fault{"NumberInTheTable",
              [](RawServer::Connection& connection) {
                  connection.send(RawServer::httpAnswer(200, R"({"configs":{"a":"1","b":2}})"));
              },
              {received, "Decoding error: configs.b: expected a string, found a number"}},
        Fault{"Status204",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 204 No Content\r\nConnection: close\r\n\r\n");
              },
              {"HTTP Error: Optional(<HTTPResponse: http://127.0.0.1:"}},
        Fault{"Status201WithAValidBody",
              [](RawServer::Connection& connection) {
                  connection.send(RawServer::httpAnswer(201, R"({"configs":{"x":"y"}})"));
              },
              {"HTTP Error: Optional(<HTTPResponse: http://127.0.0.1:"}},
        Fault{"BodyOverSixteenMebibytes",
              [](RawServer::Connection& connection) {
                  connection.send(RawServer::httpAnswer(
                      200,
                      R"({"configs":{"a":")" + std::string(std::size_t{16} * 1024 * 1024, 'x') + "\"}}"));
              },
              {transport}}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace vorna
