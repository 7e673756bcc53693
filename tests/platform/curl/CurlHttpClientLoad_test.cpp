// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <tests/platform/curl/CurlHttpClientOutcomes.h>
#include <tests/platform/curl/LocalAuthority.h>
#include <tests/support/Nginx.h>
#include <tests/support/RawServer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif
#else
constexpr bool isSanitized = false;
#endif

namespace vorna {
namespace {

using namespace std::chrono_literals;
using support::Nginx;
using support::RawServer;

constexpr std::string_view emptyAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";

/// Opens once that many threads are waiting at the same time.
class Gate {
  public:
    explicit Gate(std::size_t wanted) : wanted_(wanted) {}

    /// False if the others do not arrive within a generous time.
    bool pass() {
        std::unique_lock lock(mutex_);
        ++count_;
        changed_.notify_all();
        return changed_.wait_for(lock, 60s, [this] { return count_ >= wanted_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t wanted_;
    std::size_t count_ = 0;
};

TEST(Http1Connections, AreSixAndReused) {
    // The first answer waits for six concurrent requests; a seventh connection would be counted.
    Gate gate(6);
    const RawServer server([&](RawServer::Connection& connection) {
        for (bool isFirst = true; !connection.readRequest().empty(); isFirst = false) {
            if (isFirst && !gate.pass()) {
                return;
            }
            connection.send(emptyAnswer);
        }
    });
    CurlHttpClient client("");
    HttpOutcomes outcomes;
    for (int count = 0; count < 300; ++count) {
        client.start(posting(server.url("/v1/event"), "{}"), outcomes.next());
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 300U) << outcomes.firstError();
    EXPECT_EQ(server.connectionCount(), 6U);
}

TEST(Http1Connections, OverTlsAreSix) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    Gate gate(6);
    const RawServer behind([&](RawServer::Connection& connection) {
        connection.readRequest();
        if (connection.number() >= 6 || gate.pass()) {
            connection.send(RawServer::httpAnswer(200, ""));
        }
    });
    const LocalAuthority authority;
    Nginx nginx(authority.nginx(
        "location / { proxy_pass http://127.0.0.1:" + std::to_string(behind.port()) + "; }", false));
    CurlHttpClient client(authority.file());
    HttpOutcomes outcomes;
    for (int count = 0; count < 100; ++count) {
        client.start(posting(nginx.url("/v1/event"), "{}"), outcomes.next());
    }
    // One goes first to find out the protocol; after its answer the others follow on six connections.
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 100U) << outcomes.firstError();
    nginx.stop();
    std::set<std::uint64_t> connections;
    for (const Nginx::Request& request : nginx.requests()) {
        EXPECT_EQ(request.protocol, "HTTP/1.1");
        connections.insert(request.connection);
    }
    EXPECT_EQ(connections.size(), 6U);
}

TEST(HttpRequests, ToOneServerStartInTheOrderGiven) {
    const RawServer server([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send(emptyAnswer);
        }
    });
    CurlHttpClient client("");
    HttpOutcomes outcomes;
    for (int number = 0; number < 60; ++number) {
        client.start(getting(server.url("/" + std::to_string(number + 100))), outcomes.next());
    }
    ASSERT_TRUE(outcomes.waitForAll());
    // Connections are independent of each other; within each of them the numbers ascend.
    for (const std::string& received : server.received()) {
        int last = 0;
        for (std::size_t at = received.find("GET /"); at != std::string::npos;
             at = received.find("GET /", at + 1)) {
            const int number = std::stoi(received.substr(at + 5, 3));
            EXPECT_GT(number, last);
            last = number;
        }
    }
}

TEST(HttpRequests, AreNotDelayedByAnotherServerThatHangs) {
    RawServer hanging([](RawServer::Connection& connection) { connection.hang(); });
    const RawServer working([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send(emptyAnswer);
        }
    });
    HttpOutcomes hung;
    HttpOutcomes outcomes;
    CurlHttpClient client("");
    for (int count = 0; count < 50; ++count) {
        client.start(posting(hanging.url("/"), "{}"), hung.next());
    }
    ASSERT_TRUE(hanging.waitForConnections(6));
    for (int count = 0; count < 50; ++count) {
        client.start(posting(working.url("/"), "{}"), outcomes.next());
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 50U) << outcomes.firstError();
    EXPECT_EQ(hung.count(), 0U);
}

TEST(HttpRequests, AreNotDelayedByOtherServersThatHangInTheHandshake) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    const LocalAuthority authority;
    const Nginx nginx(authority.nginx("location / { return 200; }"));
    std::vector<std::unique_ptr<RawServer>> hanging;
    HttpOutcomes hung;
    HttpOutcomes outcomes;
    CurlHttpClient client(authority.file());
    for (int number = 0; number < 5; ++number) {
        hanging.push_back(
            std::make_unique<RawServer>([](RawServer::Connection& connection) { connection.hang(); }));
        for (int count = 0; count < 20; ++count) {
            client.start(posting("https://localhost:" + std::to_string(hanging.back()->port()) + "/", "{}"),
                         hung.next());
        }
        ASSERT_TRUE(hanging.back()->waitForConnections(1));
    }
    for (int count = 0; count < 6; ++count) {
        client.start(posting(nginx.url("/"), "{}"), outcomes.next());
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 6U) << outcomes.firstError();
    EXPECT_EQ(hung.count(), 0U);
}

TEST(HttpTimeout, DoesNotCountWhileARequestWaits) {
    // Six at a time, so that the last request has its turn long after the time-out.
    const RawServer server([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            std::this_thread::sleep_for(250ms);
            connection.send(emptyAnswer);
        }
    });
    CurlHttpClient client("");
    HttpOutcomes outcomes;
    for (int count = 0; count < 48; ++count) {
        HttpRequest request = posting(server.url("/v1/event"), "{}");
        request.timeout = 1500ms;
        client.start(std::move(request), outcomes.next());
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 48U) << outcomes.firstError();
}

TEST(HttpTimeout, DoesNotCountWhileARequestWaitsForAStream) {
    if (!Nginx::isInstalled() || !Nginx::canSleep()) {
        GTEST_SKIP() << "nginx is not installed, or not its echo module";
    }
    const LocalAuthority authority;
    // Two streams on each of six connections: more requests wait inside libcurl than are sent.
    const Nginx nginx(
        authority.nginx("http2_max_concurrent_streams 2; "
                        "location / { echo_sleep 0.25; echo ok; } location /first { return 200; }"));
    CurlHttpClient client(authority.file());
    EXPECT_EQ(fetch(client, getting(nginx.url("/first"))).status(), 200);
    HttpOutcomes outcomes;
    for (int count = 0; count < 96; ++count) {
        HttpRequest request = posting(nginx.url("/v1/event"), "{}");
        request.timeout = 1500ms;
        client.start(std::move(request), outcomes.next());
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 96U) << outcomes.firstError();
}

TEST(HttpTimeout, EndsARequestToAServerThatHangs) {
    const RawServer server([](RawServer::Connection& connection) { connection.hang(); });
    CurlHttpClient client("");
    HttpRequest request = posting(server.url("/v1/event"), "{}");
    request.timeout = 200ms;
    const HttpOutcome outcome = fetch(client, request);
    EXPECT_EQ(outcome.errorText(), "The request timed out");
    EXPECT_FALSE(outcome.body);
    EXPECT_FALSE(outcome.response);
}

TEST(HttpTimeout, EndsAnAnswerThatStopsHalfway) {
    const RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
        connection.hang();
    });
    CurlHttpClient client("");
    HttpRequest request = posting(server.url("/v1/event"), "{}");
    request.timeout = 200ms;
    const HttpOutcome outcome = fetch(client, request);
    EXPECT_EQ(outcome.errorText(), "The request timed out");
    EXPECT_FALSE(outcome.body);
    EXPECT_EQ(outcome.status(), 200);
}

TEST(HttpTimeout, EndsAHandshakeThatHangs) {
    const RawServer server([](RawServer::Connection& connection) { connection.hang(); });
    CurlHttpClient client("");
    HttpRequest request = posting("https://127.0.0.1:" + std::to_string(server.port()) + "/", "{}");
    request.timeout = 200ms;
    HttpOutcomes outcomes;
    client.start(request, outcomes.next());
    client.start(request, outcomes.next());
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithError(), 2U);
}

TEST(HttpTimeout, OfOneRequestLeavesTheOthersOfItsConnectionAlone) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    std::promise<void> timedOut;
    const std::shared_future<void> hasTimedOut = timedOut.get_future().share();
    const RawServer slow([hasTimedOut](RawServer::Connection& connection) {
        connection.readRequest();
        hasTimedOut.wait();
        connection.send(RawServer::httpAnswer(200, ""));
    });
    const RawServer hanging([](RawServer::Connection& connection) { connection.hang(); });
    const LocalAuthority authority;
    Nginx nginx(authority.nginx("location / { return 200; }"
                                "location /slow { proxy_pass http://127.0.0.1:" +
                                std::to_string(slow.port()) +
                                "; }"
                                "location /never { proxy_pass http://127.0.0.1:" +
                                std::to_string(hanging.port()) + "; }"));
    CurlHttpClient client(authority.file());
    EXPECT_EQ(fetch(client, getting(nginx.url("/"))).status(), 200);
    HttpOutcomes outcomes;
    for (int count = 0; count < 10; ++count) {
        client.start(posting(nginx.url("/slow"), "{}"), outcomes.next());
    }
    HttpRequest request = posting(nginx.url("/never"), "{}");
    request.timeout = 200ms;
    EXPECT_EQ(fetch(client, std::move(request)).errorText(), "The request timed out");
    EXPECT_EQ(outcomes.count(), 0U);
    timedOut.set_value();
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 10U) << outcomes.firstError();
    EXPECT_EQ(fetch(client, getting(nginx.url("/"))).status(), 200);
    nginx.stop();
    std::set<std::uint64_t> connections;
    for (const Nginx::Request& logged : nginx.requests()) {
        connections.insert(logged.connection);
    }
    EXPECT_EQ(connections.size(), 1U);
}

/// As after a change of network: nothing arrives, not even acknowledgements.
TEST(HttpConnection, ThatSwallowsDataIsDroppedBeforeTheRequestTimesOut) {
    std::promise<void> ended;
    const std::shared_future<void> hasEnded = ended.get_future().share();
    const RawServer deaf([hasEnded](RawServer::Connection&) { hasEnded.wait(); });
    CurlHttpClient client("");
    HttpRequest request = posting(deaf.url("/v1/event"), std::string(std::size_t{32} << 20U, 'b'));
    request.timeout = 3s;
    const HttpOutcome outcome = fetch(client, std::move(request));
    ended.set_value();
    EXPECT_TRUE(outcome.error);
    EXPECT_NE(outcome.errorText(), "The request timed out");
}

TEST(HttpTimeout, MayHaveAnyValue) {
    const RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, ""));
    });
    CurlHttpClient client("");
    HttpRequest request = getting(server.url("/"));
    request.timeout = std::chrono::milliseconds::max();
    EXPECT_EQ(fetch(client, request).status(), 200);
    request.timeout = std::chrono::milliseconds::min();
    EXPECT_TRUE(fetch(client, request).error);
}

/// What nginx has received over TLS.
class NginxDelivery : public testing::Test {
  protected:
    void SetUp() override {
        if (!Nginx::isInstalled()) {
            GTEST_SKIP() << "nginx is not installed";
        }
    }

    /// Posts that many requests to that many paths in turn, and expects each to be received and answered
    /// once.
    void expectEachOnce(Nginx& nginx, const std::string& protocol, int count, int paths) const {
        CurlHttpClient client(authority_.file());
        HttpOutcomes outcomes;
        for (int number = 0; number < count; ++number) {
            client.start(
                posting(nginx.url("/event/" + std::to_string(number % paths)), std::string(850, 'e')),
                outcomes.next());
        }
        EXPECT_TRUE(outcomes.waitForAll());
        EXPECT_EQ(outcomes.countWithStatus(200), static_cast<std::size_t>(count)) << outcomes.firstError();
        nginx.stop();
        std::map<std::string, int> received;
        for (const Nginx::Request& request : nginx.requests()) {
            EXPECT_EQ(request.protocol, protocol);
            ++received[request.path];
        }
        EXPECT_EQ(received.size(), static_cast<std::size_t>(paths));
        for (const auto& [path, times] : received) {
            EXPECT_EQ(times, count / paths) << path;
        }
    }

    const LocalAuthority authority_;
};

using Http1Delivery = NginxDelivery;
using Http2Delivery = NginxDelivery;

TEST_F(Http1Delivery, LosesNothingWhenTheServerKeepsClosingConnections) {
    Nginx nginx(
        authority_.nginx("keepalive_requests 20; location / { proxy_pass http://accepting; }", false));
    expectEachOnce(nginx, "HTTP/1.1", 2000, 1);
}

TEST_F(Http2Delivery, SendsManyConcurrentRequestsOnOneConnection) {
    Gate gate(64);
    const RawServer behind([&](RawServer::Connection& connection) {
        connection.readRequest();
        if (gate.pass()) {
            connection.send(RawServer::httpAnswer(200, ""));
        }
    });
    Nginx nginx(authority_.nginx("location / { proxy_pass http://127.0.0.1:" + std::to_string(behind.port()) +
                                 "; } location /first { return 200; }"));
    CurlHttpClient client(authority_.file());
    EXPECT_EQ(fetch(client, getting(nginx.url("/first"))).status(), 200);
    HttpOutcomes outcomes;
    for (int count = 0; count < 64; ++count) {
        client.start(posting(nginx.url("/v1/event"), "{}"), outcomes.next());
    }
    // None is answered before all 64 have arrived.
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 64U) << outcomes.firstError();
    nginx.stop();
    std::set<std::uint64_t> connections;
    for (const Nginx::Request& request : nginx.requests()) {
        EXPECT_EQ(request.protocol, "HTTP/2.0");
        connections.insert(request.connection);
    }
    EXPECT_EQ(connections.size(), 1U);
}

TEST_F(Http2Delivery, OpensOneConnectionForABurstFromTheStart) {
    Nginx nginx(authority_.nginx("location / { proxy_pass http://accepting; }"));
    CurlHttpClient client(authority_.file());
    HttpOutcomes outcomes;
    for (int count = 0; count < 500; ++count) {
        client.start(posting(nginx.url("/v1/event"), "{}"), outcomes.next());
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 500U) << outcomes.firstError();
    nginx.stop();
    std::set<std::uint64_t> connections;
    for (const Nginx::Request& request : nginx.requests()) {
        connections.insert(request.connection);
    }
    EXPECT_EQ(connections.size(), 1U);
}

TEST_F(Http2Delivery, OpensOneConnectionForABurstAfterTheLastHasClosed) {
    constexpr std::size_t rounds = 10;
    // The connection closes after the burst.
    Nginx nginx(authority_.nginx("keepalive_requests 200; location / { proxy_pass http://accepting; }"));
    CurlHttpClient client(authority_.file());
    HttpOutcomes outcomes;
    for (std::size_t round = 1; round <= rounds; ++round) {
        for (int count = 0; count < 200; ++count) {
            client.start(posting(nginx.url("/v1/event"), "{}"), outcomes.next());
        }
        ASSERT_TRUE(outcomes.waitForAll());
        ASSERT_EQ(outcomes.countWithStatus(200), round * 200) << outcomes.firstError();
    }
    nginx.stop();
    std::set<std::uint64_t> connections;
    for (const Nginx::Request& request : nginx.requests()) {
        connections.insert(request.connection);
    }
    EXPECT_LE(connections.size(), rounds + 2);
}

TEST_F(Http2Delivery, LosesNothingWhenTheServerClosesConnections) {
    // nginx accepts 1,000 requests per connection.
    Nginx nginx(authority_.nginx("location / { proxy_pass http://accepting; }"));
    expectEachOnce(nginx, "HTTP/2.0", 5000, 1);
    std::set<std::uint64_t> connections;
    for (const Nginx::Request& request : nginx.requests()) {
        connections.insert(request.connection);
    }
    // Requests wait for a connection that is being opened instead of opening another one.
    EXPECT_LE(connections.size(), 8U);
}

TEST_F(Http2Delivery, LosesNothingWhenTheServerKeepsClosingConnections) {
    // Often enough for each of libcurl's handles to see it more than five times.
    Nginx nginx(authority_.nginx("keepalive_requests 50; location / { proxy_pass http://accepting; }"));
    expectEachOnce(nginx, "HTTP/2.0", 5000, 1);
}

TEST_F(Http2Delivery, LosesNothingWhenTheServerAllowsFewStreams) {
    Nginx nginx(
        authority_.nginx("http2_max_concurrent_streams 8; location / { proxy_pass http://accepting; }"));
    expectEachOnce(nginx, "HTTP/2.0", 5000, 5000);
}

TEST_F(Http2Delivery, AcceptsAnAnswerBeforeTheWholeRequestIsSent) {
    // nginx answers as soon as it has the headers, and closes the stream.
    const Nginx nginx(authority_.nginx("keepalive_requests 1000000; location / { return 204; }"));
    CurlHttpClient client(authority_.file());
    // On a new connection libcurl may lose such an answer entirely.
    EXPECT_EQ(fetch(client, getting(nginx.url("/"))).status(), 204);
    HttpOutcomes outcomes;
    for (std::size_t round = 1; round <= 10; ++round) {
        for (int count = 0; count < 500; ++count) {
            client.start(posting(nginx.url("/v1/event"), std::string(850, 'e')), outcomes.next());
        }
        ASSERT_TRUE(outcomes.waitForAll());
        ASSERT_EQ(outcomes.countWithStatus(204), round * 500) << outcomes.firstError();
    }
}

TEST_F(Http2Delivery, TransfersLargeBodiesBothWays) {
    const std::string large(std::size_t{8} << 20U, 'l');
    const Nginx nginx(authority_.nginx("root .; location / { }"
                                       "location /v1/ { proxy_pass http://127.0.0.1:1; }"));
    support::writeFile(nginx.folder() / "large.bin", large);
    CurlHttpClient client(authority_.file());
    EXPECT_TRUE(fetch(client, getting(nginx.url("/large.bin"))).body == large);
    // nginx receives the whole body before it finds its upstream missing.
    EXPECT_EQ(fetch(client, posting(nginx.url("/v1/event"), large)).status(), 502);
}

TEST(WaitingHttpRequests, CostLittleMoreThanTheirBodies) {
    if (isSanitized) {
        GTEST_SKIP() << "sanitizers use memory of their own";
    }
    const RawServer hanging([](RawServer::Connection& connection) { connection.hang(); });
    const RawServer working([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send(emptyAnswer);
        }
    });
    std::size_t ended = 0;
    constexpr std::size_t count = 100'000;
    constexpr std::size_t bodySize = 850;
    {
        CurlHttpClient client("");
        // The six in flight do not count as waiting.
        for (int number = 0; number < 6; ++number) {
            client.start(posting(hanging.url("/v1/event"), "{}"), [](auto, auto, auto) {});
        }
        EXPECT_TRUE(hanging.waitForConnections(6));
        EXPECT_EQ(fetch(client, getting(working.url("/"))).status(), 200);

        const auto used = [] {
            const struct mallinfo2 info = mallinfo2();
            return info.uordblks + info.hblkhd;
        };
        const std::size_t before = used();
        for (std::size_t number = 0; number < count; ++number) {
            // With spare capacity, as an encoder leaves it.
            std::string body;
            while (body.size() < bodySize) {
                body += "0123456789";
            }
            client.start(posting(hanging.url("/v1/event"), std::move(body)),
                         [&ended](auto, auto, auto) { ++ended; });
        }
        // Answered only after all of them have been queued.
        EXPECT_EQ(fetch(client, getting(working.url("/"))).status(), 200);
        const double perRequest = static_cast<double>(used() - before) / static_cast<double>(count);
        RecordProperty("bytesPerWaitingRequest", std::to_string(perRequest));
        EXPECT_LE(perRequest, bodySize * 1.15);
        EXPECT_GE(perRequest, bodySize) << "the measurement itself is wrong";
    }
    EXPECT_EQ(ended, count);
}

}  // namespace
}  // namespace vorna
