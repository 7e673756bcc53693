// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <tests/platform/curl/CurlHttpClientOutcomes.h>
#include <tests/platform/curl/LocalAuthority.h>
#include <tests/support/Nginx.h>
#include <tests/support/RawServer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <future>
#include <sstream>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace vorna {
namespace {

using support::Nginx;
using support::RawServer;
using testing::HasSubstr;

/// The lines of a request's head except Accept-Encoding, which depends on how libcurl was built.
std::vector<std::string> headLines(const std::string& request) {
    std::istringstream text(request.substr(0, request.find("\r\n\r\n")));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        line.erase(line.find_last_not_of('\r') + 1);
        if (!line.starts_with("Accept-Encoding: ")) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::string bodyOf(const std::string& request) {
    return request.substr(request.find("\r\n\r\n") + 4);
}

/// Answers the first request of each connection.
void answerOk(RawServer::Connection& connection) {
    connection.readRequest();
    connection.send(RawServer::httpAnswer(200, "fine"));
}

TEST(HttpRequestOnTheWire, OfGetHasOnlyTheHeadersOfTheProtocol) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, getting(server.url("/v1/thing?a=b")));
    EXPECT_EQ(outcome.status(), 200) << outcome.errorText();
    EXPECT_EQ(outcome.body, "fine");
    EXPECT_EQ(headLines(server.received().at(0)),
              (std::vector<std::string>{"GET /v1/thing?a=b HTTP/1.1",
                                        "Host: 127.0.0.1:" + std::to_string(server.port())}));
}

TEST(HttpRequestOnTheWire, OfHeadEndsWithTheHeadersOfTheAnswer) {
    const RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n");
        connection.hang();
    });
    CurlHttpClient client("");
    HttpRequest request = getting(server.url("/picture.png"));
    request.method = HttpMethod::head;
    const HttpOutcome outcome = fetch(client, std::move(request));
    EXPECT_EQ(outcome.errorText(), "no error");
    EXPECT_EQ(outcome.body, "");
    EXPECT_EQ(outcome.header("Content-Length"), "5000");
    EXPECT_EQ(headLines(server.received().at(0)),
              (std::vector<std::string>{"HEAD /picture.png HTTP/1.1",
                                        "Host: 127.0.0.1:" + std::to_string(server.port())}));
}

TEST(HttpRequestOnTheWire, OfPostHasTheGivenHeadersOnceAndTheBody) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    HttpRequest request = posting(server.url("/v1/event"), R"({"name":"hello"})");
    request.headers.push_back({"X-Empty", ""});
    EXPECT_EQ(fetch(client, std::move(request)).status(), 200);
    const std::string received = server.received().at(0);
    EXPECT_EQ(headLines(received),
              (std::vector<std::string>{"POST /v1/event HTTP/1.1",
                                        "Host: 127.0.0.1:" + std::to_string(server.port()),
                                        "Content-Type: application/json", "X-Empty:", "Content-Length: 16"}));
    EXPECT_EQ(bodyOf(received), R"({"name":"hello"})");
}

TEST(HttpRequestOnTheWire, OfPostWithoutContentTypeHasNone) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    HttpRequest request = posting(server.url("/"), "text");
    request.headers.clear();
    EXPECT_EQ(fetch(client, std::move(request)).status(), 200);
    EXPECT_EQ(headLines(server.received().at(0)),
              (std::vector<std::string>{"POST / HTTP/1.1", "Host: 127.0.0.1:" + std::to_string(server.port()),
                                        "Content-Length: 4"}));
}

TEST(HttpRequestOnTheWire, OverHttp2HasOnlyTheHeadersOfTheProtocol) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    const LocalAuthority authority;
    const RawServer behind(answerOk);
    // nginx forwards all headers except the four that concern the connection.
    const Nginx nginx(
        authority.nginx("location / { proxy_pass http://127.0.0.1:" + std::to_string(behind.port()) +
                        "; proxy_set_header Accept-Encoding ''; }"));
    CurlHttpClient client(authority.file());
    EXPECT_EQ(fetch(client, posting(nginx.url("/v1/event"), "{}")).status(), 200);
    EXPECT_EQ(headLines(behind.received().at(0)),
              (std::vector<std::string>{
                  "POST /v1/event HTTP/1.0", "Host: 127.0.0.1:" + std::to_string(behind.port()),
                  "Connection: close", "Content-Length: 2", "content-type: application/json"}));
}

struct BodySize {
    const char* name;
    std::size_t bytes;
};

class HttpRequestBody : public testing::TestWithParam<BodySize> {};

TEST_P(HttpRequestBody, ArrivesCompleteAndWithoutExpect100) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    std::string body(GetParam().bytes, 'x');
    for (std::size_t index = 0; index < body.size(); ++index) {
        body[index] = static_cast<char>(index * 7 + index / 256);
    }
    const HttpOutcome outcome = fetch(client, posting(server.url("/v1/event"), body));
    EXPECT_EQ(outcome.status(), 200) << outcome.errorText();
    const std::string received = server.received().at(0);
    EXPECT_THAT(received.substr(0, received.find("\r\n\r\n")),
                HasSubstr("Content-Length: " + std::to_string(body.size())));
    EXPECT_EQ(received.find("Expect"), std::string::npos);
    EXPECT_TRUE(bodyOf(received) == body);
}

INSTANTIATE_TEST_SUITE_P(Sizes, HttpRequestBody,
                         testing::Values(BodySize{"Empty", 0}, BodySize{"OneByte", 1},
                                         BodySize{"OneMebibyte", std::size_t{1} << 20U},
                                         BodySize{"EightMebibytes", std::size_t{8} << 20U}),
                         [](const auto& testCase) { return testCase.param.name; });

/// In two segments, the second would wait for the delayed acknowledgement of the first.
TEST(HttpRequestOnTheWire, OfAnEventIsOneSegment) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(listen(listener, 1), 0);
    ASSERT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);

    CurlHttpClient client("");
    HttpOutcomes outcomes;
    client.start(posting("http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/v1/event",
                         std::string(850, 'e')),
                 outcomes.next());
    const int connection = accept(listener, nullptr, nullptr);
    std::array<char, 8192> first{};
    const ssize_t count = recv(connection, first.data(), first.size(), 0);
    ASSERT_GT(count, 850);
    EXPECT_EQ(std::string(first.data(), static_cast<std::size_t>(count))
                  .substr(static_cast<std::size_t>(count) - 850),
              std::string(850, 'e'));
    const std::string answer = RawServer::httpAnswer(200, "");
    EXPECT_EQ(send(connection, answer.data(), answer.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(answer.size()));
    close(connection);
    close(listener);
    EXPECT_TRUE(outcomes.waitForAll());
}

TEST(HttpClientStart, ReturnsWhileTheClientIsBusy) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    HttpOutcomes outcomes;
    std::promise<void> entered;
    std::promise<void> released;
    // The client cannot do anything while its thread is in this completion.
    client.start(getting(server.url("/first")), [&](auto, auto, auto) {
        entered.set_value();
        released.get_future().wait();
    });
    entered.get_future().wait();
    for (int count = 0; count < 100; ++count) {
        client.start(getting(server.url("/")), outcomes.next());
    }
    EXPECT_EQ(outcomes.count(), 0U);
    released.set_value();
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 100U) << outcomes.firstError();
}

TEST(HttpClientStart, ReturnsEvenIfTheServerIsSilent) {
    RawServer server([](RawServer::Connection& connection) { connection.hang(); });
    HttpOutcomes outcomes;
    {
        CurlHttpClient client("");
        client.start(getting(server.url("/")), outcomes.next());
        EXPECT_TRUE(server.waitForConnections(1));
        client.start(getting(server.url("/")), outcomes.next());
        EXPECT_EQ(outcomes.count(), 0U);
    }
    EXPECT_EQ(outcomes.countWithError(), 2U);
}

TEST(HttpClientStart, WakesAnIdleClient) {
    const RawServer server([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        }
    });
    CurlHttpClient client("");
    const auto begin = std::chrono::steady_clock::now();
    for (int count = 0; count < 50; ++count) {
        EXPECT_EQ(fetch(client, getting(server.url("/"))).status(), 200);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30)) << "it was not woken";
}

TEST(HttpClientStart, WorksFromInsideACompletion) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    HttpOutcomes outcomes;
    HttpClient::Completion second = outcomes.next();
    client.start(getting(server.url("/one")),
                 [&](auto, auto, auto) { client.start(getting(server.url("/two")), second); });
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 1U) << outcomes.firstError();
}

TEST(HttpClientStart, FromManyThreadsLosesNothing) {
    const RawServer server([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        }
    });
    CurlHttpClient client("");
    HttpOutcomes outcomes;
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&] {
            for (int count = 0; count < 100; ++count) {
                client.start(posting(server.url("/"), "{}"), outcomes.next());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 800U) << outcomes.firstError();
}

TEST(HttpClientCompletion, RunsOnOneThreadOfTheClient) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    HttpOutcomes outcomes;
    client.start(getting(server.url("/")), outcomes.next());
    client.start(getting("ftp://127.0.0.1/"), outcomes.next());
    ASSERT_TRUE(outcomes.waitForAll());
    const std::vector<std::vector<HttpOutcome>> all = outcomes.all();
    EXPECT_NE(all[0].at(0).thread, std::this_thread::get_id());
    EXPECT_EQ(all[0].at(0).thread, all[1].at(0).thread);
}

TEST(HttpClientCompletion, MayThrowWithoutAffectingOthers) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    client.start(getting(server.url("/")),
                 [](auto, auto, auto) { throw std::runtime_error("a bad completion"); });
    EXPECT_EQ(fetch(client, getting(server.url("/"))).status(), 200);
}

TEST(HttpCancellation, EndsARequestThatIsNotAnswered) {
    RawServer server([](RawServer::Connection& connection) { connection.hang(); });
    HttpOutcomes outcomes;
    CurlHttpClient client("");
    std::stop_source stop;
    HttpRequest request = getting(server.url("/"));
    request.stop = stop.get_token();
    client.start(std::move(request), outcomes.next());
    ASSERT_TRUE(server.waitForConnections(1));
    stop.request_stop();
    ASSERT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.firstError(), "The request was cancelled");
    EXPECT_EQ(outcomes.countWithError(), 1U);
}

TEST(HttpCancellation, EndsAWaitingRequest) {
    RawServer server([](RawServer::Connection& connection) { connection.hang(); });
    HttpOutcomes outcomes;
    HttpOutcomes others;
    CurlHttpClient client("");
    client.start(getting(server.url("/")), others.next());
    ASSERT_TRUE(server.waitForConnections(1));
    std::stop_source stop;
    for (int count = 0; count < 20; ++count) {
        HttpRequest request = getting(server.url("/"));
        request.stop = stop.get_token();
        client.start(std::move(request), outcomes.next());
    }
    stop.request_stop();
    ASSERT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithError(), 20U);
    EXPECT_EQ(others.count(), 0U) << "requests that are not cancelled continue";
}

TEST(HttpCancellation, AfterTheAnswerHasNoEffect) {
    const RawServer server(answerOk);
    CurlHttpClient client("");
    std::stop_source stop;
    HttpRequest request = getting(server.url("/"));
    request.stop = stop.get_token();
    EXPECT_EQ(fetch(client, std::move(request)).status(), 200);
    stop.request_stop();
    EXPECT_EQ(fetch(client, getting(server.url("/"))).status(), 200);
}

}  // namespace
}  // namespace vorna
