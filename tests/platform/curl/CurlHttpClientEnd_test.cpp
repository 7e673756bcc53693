// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/ProcessExit.h>
#include <vorna/platform/curl/CurlHttpClient.h>

#include <tests/platform/curl/CurlHttpClientOutcomes.h>
#include <tests/platform/curl/LocalAuthority.h>
#include <tests/support/CountingServer.h>
#include <tests/support/HostThread.h>
#include <tests/support/Nginx.h>
#include <tests/support/RawServer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace vorna {
namespace {

using namespace std::chrono_literals;
using support::Nginx;
using support::RawServer;

constexpr std::string_view emptyAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";

TEST(HttpClientDestruction, EndsAllRequestsWithAnError) {
    RawServer server([](RawServer::Connection& connection) { connection.hang(); });
    HttpOutcomes outcomes;
    std::chrono::steady_clock::time_point begin;
    {
        CurlHttpClient client("");
        for (int count = 0; count < 1000; ++count) {
            client.start(posting(server.url("/"), "{}"), outcomes.next());
        }
        EXPECT_TRUE(server.waitForConnections(6));
        begin = std::chrono::steady_clock::now();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s) << "the thread was not woken";
    EXPECT_EQ(outcomes.countWithError(), 1000U);
    EXPECT_EQ(outcomes.firstError(), "The HTTP client has been closed");
}

TEST(HttpClientDestruction, EndsRequestsThatHaveNotBeenQueuedYet) {
    HttpOutcomes outcomes;
    std::promise<void> entered;
    std::promise<void> released;
    std::thread releaser;
    {
        CurlHttpClient client("");
        client.start(getting("ftp://127.0.0.1/"), [&](auto, auto, auto) {
            entered.set_value();
            released.get_future().wait();
        });
        entered.get_future().wait();
        for (int count = 0; count < 100; ++count) {
            client.start(getting("https://service.vorna.invalid/"), outcomes.next());
        }
        releaser = std::thread([&] { released.set_value(); });
    }
    releaser.join();
    EXPECT_EQ(outcomes.countWithError(), 100U);
}

TEST(HttpClientDestruction, OfAnUnusedClientDoesNothing) {
    const CurlHttpClient client("");
}

TEST(HttpClientDestruction, WaitsForNoNameServer) {
    HttpOutcomes outcomes;
    {
        CurlHttpClient client("");
        client.start(getting("https://service.vorna.invalid/"), outcomes.next());
    }
    EXPECT_EQ(outcomes.countWithError(), 1U);
}

TEST(HttpClientDestruction, OverHttp2EndsAllStreams) {
    if (!Nginx::isInstalled() || !Nginx::canSleep()) {
        GTEST_SKIP() << "nginx is not installed, or not its echo module";
    }
    const LocalAuthority authority;
    const Nginx nginx(authority.nginx("location / { echo_sleep 600; } location /first { return 200; }"));
    HttpOutcomes outcomes;
    {
        CurlHttpClient client(authority.file());
        EXPECT_EQ(fetch(client, getting(nginx.url("/first"))).status(), 200);
        for (int count = 0; count < 1000; ++count) {
            client.start(posting(nginx.url("/"), "{}"), outcomes.next());
        }
        EXPECT_EQ(fetch(client, getting("ftp://127.0.0.1/")).status(), 0);
    }
    EXPECT_EQ(outcomes.countWithError(), 1000U);
}

TEST(HttpClientDestruction, MayComeFromACompletion) {
    RawServer server([](RawServer::Connection& connection) {
        if (connection.number() == 0) {
            connection.readRequest();
            connection.send(emptyAnswer);
        }
        connection.hang();
    });
    HttpOutcomes outcomes;
    auto client = std::make_unique<CurlHttpClient>("");
    HttpClient::Completion first = outcomes.next();
    std::promise<void> isSet;
    client->start(getting(server.url("/")), [&](auto body, auto response, auto error) {
        isSet.get_future().wait();
        client.reset();
        first(std::move(body), std::move(response), std::move(error));
    });
    for (int count = 0; count < 100; ++count) {
        client->start(posting(server.url("/"), "{}"), outcomes.next());
    }
    isSet.set_value();
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 1U);
    EXPECT_EQ(outcomes.countWithError(), 100U);
}

TEST(HttpClientDestruction, MayComeWithTheLastCompletionThatHoldsTheClient) {
    const RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, ""));
    });
    HttpOutcomes outcomes;
    std::weak_ptr<CurlHttpClient> watch;
    {
        auto client = std::make_shared<CurlHttpClient>("");
        watch = client;
        client->start(getting(server.url("/")),
                      [client, next = outcomes.next()](auto body, auto response, auto error) {
                          next(std::move(body), std::move(response), std::move(error));
                      });
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), 1U);
    while (!watch.expired()) {
        std::this_thread::yield();
    }
}

TEST(HttpClientDestruction, EndsEvenIfEachCompletionStartsAnotherRequest) {
    RawServer server([](RawServer::Connection& connection) { connection.hang(); });
    int count = 0;
    std::function<void()> startAgain;
    {
        CurlHttpClient client("");
        startAgain = [&] {
            ++count;
            client.start(getting(server.url("/")), [&](auto, auto, auto) { startAgain(); });
        };
        startAgain();
        EXPECT_TRUE(server.waitForConnections(1));
    }
    EXPECT_EQ(count, 2);
}

TEST(HttpClientDestruction, MayHappenAtAnyTime) {
    const RawServer server([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send(emptyAnswer);
        }
    });
    HttpOutcomes outcomes;
    for (int round = 0; round < 50; ++round) {
        CurlHttpClient client("");
        for (int count = 0; count < 20; ++count) {
            client.start(posting(server.url("/"), "{}"), outcomes.next());
        }
        EXPECT_TRUE(outcomes.waitFor(static_cast<std::size_t>(round) * 20 + 1));
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200) + outcomes.countWithError(), 1000U);
}

TEST(HttpClientThread, IsReplacedIfACompletionEndsIt) {
    RawServer server([](RawServer::Connection& connection) {
        while (!connection.readRequest().empty()) {
            connection.send(emptyAnswer);
        }
    });
    HttpOutcomes outcomes;
    CurlHttpClient client("");
    std::promise<void> ending;
    client.start(posting(server.url("/"), "{}"), [&](auto, auto, auto) {
        ending.set_value();
        support::HostThread::endHere();
    });
    ending.get_future().wait();
    const auto deadline = std::chrono::steady_clock::now() + 1min;
    std::size_t tried = 0;
    // Until the thread has ended altogether, a request only waits.
    while (outcomes.count() == 0 && std::chrono::steady_clock::now() < deadline) {
        client.start(posting(server.url("/"), "{}"), outcomes.next());
        ++tried;
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_TRUE(outcomes.waitForAll());
    EXPECT_EQ(outcomes.countWithStatus(200), tried);
}

/// Each test exits a separate process, which is killed if it takes so long that it must have hung.
class ProcessExitUnderLoad : public testing::Test {
  protected:
    ProcessExitUnderLoad() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    static void limitTheProcess() { alarm(60); }
};

TEST_F(ProcessExitUnderLoad, OverHttp2IsClean) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    EXPECT_EXIT(
        {
            limitTheProcess();
            const LocalAuthority authority;
            const Nginx nginx(authority.nginx("location / { return 200; }"));
            auto outcomes = std::make_unique<HttpOutcomes>();
            CurlHttpClient client(authority.file());
            for (int count = 0; count < 5000; ++count) {
                client.start(posting(nginx.url("/"), std::string(850, 'e')), outcomes->next());
            }
            outcomes->waitFor(500);
            std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitUnderLoad, WithAServerThatHangsIsClean) {
    EXPECT_EXIT(
        {
            limitTheProcess();
            RawServer server([](RawServer::Connection& connection) { connection.hang(); });
            CurlHttpClient client("");
            for (int count = 0; count < 5000; ++count) {
                client.start(posting(server.url("/"), std::string(850, 'e')),
                             [](auto, auto, auto) { abort(); });
            }
            server.waitForConnections(6);
            std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitUnderLoad, ImmediatelyAfterTheStartIsClean) {
    EXPECT_EXIT(
        {
            limitTheProcess();
            CurlHttpClient client("");
            client.start(getting("https://service.vorna.invalid/"), [](auto, auto, auto) {});
            std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitUnderLoad, FromACompletionIsClean) {
    EXPECT_EXIT(
        {
            limitTheProcess();
            const RawServer server([](RawServer::Connection& connection) {
                connection.readRequest();
                connection.send(emptyAnswer);
                connection.hang();
            });
            CurlHttpClient client("");
            for (int count = 0; count < 1000; ++count) {
                client.start(getting(server.url("/")),
                             [](auto, auto, auto) { std::exit(0); });  // NOLINT(concurrency-mt-unsafe)
            }
            for (;;) {
                pause();
            }
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitUnderLoad, DuringASlowCompletionCompletesNothingElse) {
    EXPECT_EXIT(
        {
            limitTheProcess();
            // Runs after the client's thread has been stopped, and longer than the completion.
            std::atexit([] { std::this_thread::sleep_for(std::chrono::seconds(1)); });
            CurlHttpClient client("");
            // The thread finds the other two at the same time.
            std::promise<void> bothStarted;
            client.start(getting("http://refused.test/"),
                         [&bothStarted](auto, auto, auto) { bothStarted.get_future().wait(); });
            std::promise<void> begun;
            client.start(getting("http://refused.test/"), [&begun](auto, auto, auto) {
                begun.set_value();
                std::this_thread::sleep_for(std::chrono::milliseconds(500));
            });
            client.start(getting("http://refused.test/"), [](auto, auto, auto) { abort(); });
            bothStarted.set_value();
            begun.get_future().wait();
            std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
        },
        testing::ExitedWithCode(0), "");
}

/// What a completion of the host owns: neither called nor destroyed once the process exits.
struct HostObject {
    HostObject() = default;
    HostObject(const HostObject&) = delete;
    HostObject& operator=(const HostObject&) = delete;
    HostObject(HostObject&&) = delete;
    HostObject& operator=(HostObject&&) = delete;

    ~HostObject() { use(); }

    static void use() {
        if (processIsExiting()) {
            abort();
        }
    }
};

TEST_F(ProcessExitUnderLoad, FinishesWhatWasStartedAndCompletesNothing) {
    EXPECT_EXIT(
        {
            limitTheProcess();
            static constexpr std::size_t count = 50;
            static const auto began = std::chrono::steady_clock::now();
            static const support::CountingServer server;
            // Runs after the client's thread has been stopped.
            std::atexit([] {
                const bool isInTime = std::chrono::steady_clock::now() - began < 30s;
                if (server.count("leaving") != count || !isInTime) {
                    std::_Exit(3);
                }
            });
            CurlHttpClient client("", 1min);
            for (std::size_t number = 0; number < count; ++number) {
                client.start(posting(server.url() + "/v1/event", R"({"name":"leaving"})"),
                             [object = std::make_shared<HostObject>()](auto, auto, auto) { object->use(); });
            }
            client.start(getting("ftp://127.0.0.1/"),
                         [object = std::make_shared<HostObject>()](auto, auto, auto) { object->use(); });
            std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitUnderLoad, BeginsNothingNew) {
    EXPECT_EXIT(
        {
            limitTheProcess();
            static const support::CountingServer server(support::CountingServer::Answers::never);
            static std::optional<CurlHttpClient> client;
            // Runs after the client's thread has been stopped.
            std::atexit([] { std::_Exit(server.count("late") == 0 ? 0 : 3); });
            client.emplace("", 500ms);
            const auto start = [](const char* name) {
                client->start(posting(server.url() + "/v1/event", std::string(R"({"name":")") + name + "\"}"),
                              [](auto, auto, auto) {});
            };
            start("early");
            if (!server.waitFor({"early"})) {
                std::_Exit(4);
            }
            std::thread([start] {
                while (!processIsExiting()) {
                    std::this_thread::yield();
                }
                start("late");
            }).detach();
            std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(ProcessExitUnderLoad, WithAClientThatIsDestroyedWithTheStaticsIsClean) {
    EXPECT_EXIT(
        {
            limitTheProcess();
            RawServer server([](RawServer::Connection& connection) { connection.hang(); });
            static const auto client = std::make_unique<CurlHttpClient>("");
            for (int count = 0; count < 1000; ++count) {
                client->start(getting(server.url("/")), [](auto, auto, auto) {});
            }
            server.waitForConnections(6);
            std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vorna
