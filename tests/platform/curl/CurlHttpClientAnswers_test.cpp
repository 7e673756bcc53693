// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <tests/platform/curl/CurlHttpClientOutcomes.h>
#include <tests/platform/curl/LocalAuthority.h>
#include <tests/support/Nginx.h>
#include <tests/support/RawServer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace vorna {
namespace {

using support::Nginx;
using support::RawServer;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;

std::string redirect(int status, const std::string& location) {
    return "HTTP/1.1 " + std::to_string(status) + " Elsewhere\r\nLocation: " + location +
           "\r\nContent-Length: 4\r\nConnection: close\r\n\r\ngone";
}

struct Status {
    const char* name;
    int status;
    const char* body;
};

class HttpStatus : public testing::TestWithParam<Status> {};

TEST_P(HttpStatus, IsAnAnswerNotAnError) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(GetParam().status == 204
                            ? std::string("HTTP/1.1 204 No Content\r\nX-Mark: here\r\n\r\n")
                            : "HTTP/1.1 " + std::to_string(GetParam().status) +
                                  " Told\r\nX-Mark:  here \r\nContent-Length: " +
                                  std::to_string(std::string(GetParam().body).size()) + "\r\n\r\n" +
                                  GetParam().body);
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, posting(server.url("/v1/event"), "{}"));
    EXPECT_EQ(outcome.errorText(), "no error");
    EXPECT_EQ(outcome.status(), GetParam().status);
    EXPECT_EQ(outcome.body, GetParam().body);
    EXPECT_EQ(outcome.header("X-Mark"), "here");
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(outcome.response->url, server.url("/v1/event"));
}

INSTANTIATE_TEST_SUITE_P(Statuses, HttpStatus,
                         testing::Values(Status{"NoContent", 204, ""}, Status{"EmptyBody", 200, ""},
                                         Status{"NotModified", 304, ""},
                                         Status{"RedirectWithoutTarget", 301, "?"},
                                         Status{"NotFound", 404, "nothing here"},
                                         Status{"ServerError", 500, "sorry"}, Status{"Unassigned", 799, "?"}),
                         [](const auto& testCase) { return testCase.param.name; });

TEST(HttpAnswer, MayEndWithTheConnection) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\n\r\nas long as it lasts");
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, getting(server.url("/")));
    EXPECT_EQ(outcome.body, "as long as it lasts") << outcome.errorText();
}

TEST(HttpAnswer, HasTheHeadersOfTheFinalHeadOnly) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 103 Early Hints\r\nX-Early: 1\r\n\r\n"
                        "HTTP/1.1 200 OK\r\nX-Late: 2\r\nX-Late: 3\r\nContent-Length: 2\r\n\r\nok");
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, getting(server.url("/")));
    ASSERT_TRUE(outcome.response) << outcome.errorText();
    EXPECT_EQ(outcome.response->headers,
              (std::vector<HttpHeader>{{"X-Late", "2"}, {"X-Late", "3"}, {"Content-Length", "2"}}));
}

TEST(HttpAnswer, InGzipIsDecompressed) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    const Nginx nginx(
        {.certificate = "", .privateKey = "", .server = "root .; gzip on; gzip_types *; location / { }"});
    const std::string text(100'000, 'z');
    support::writeFile(nginx.folder() / "text.json", text);
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, getting(nginx.url("/text.json")));
    EXPECT_EQ(outcome.header("Content-Encoding"), "gzip") << outcome.errorText();
    EXPECT_TRUE(outcome.body == text);
}

TEST(HttpRedirect, ToAnotherHostIsFollowedWithGet) {
    RawServer target([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, "found"));
    });
    const std::string there = "http://localhost:" + std::to_string(target.port()) + "/there";
    RawServer server([&](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(redirect(301, there));
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, posting(server.url("/here"), "{}"));
    EXPECT_EQ(outcome.body, "found") << outcome.errorText();
    EXPECT_EQ(outcome.status(), 200);
    EXPECT_EQ(outcome.response.value_or(HttpResponse{}).url, there);
    EXPECT_FALSE(outcome.header("Location")) << "the first answer's headers are not the last one's";
    EXPECT_THAT(target.received().at(0), StartsWith("GET /there HTTP/1.1\r\n"));
    // The next request of this kind is a POST again.
    EXPECT_EQ(fetch(client, posting(server.url("/here"), "{}")).status(), 200);
    EXPECT_THAT(server.received().at(1), StartsWith("POST /here HTTP/1.1\r\n"));
}

TEST(HttpRedirect, Of307And308KeepsMethodAndBody) {
    for (const int status : {307, 308}) {
        RawServer target([](RawServer::Connection& connection) {
            connection.readRequest();
            connection.send(RawServer::httpAnswer(200, ""));
        });
        RawServer server([&](RawServer::Connection& connection) {
            connection.readRequest();
            connection.send(redirect(status, target.url("/there")));
        });
        CurlHttpClient client("");
        EXPECT_EQ(fetch(client, posting(server.url("/here"), R"({"kept":true})")).status(), 200);
        EXPECT_THAT(target.received().at(0), StartsWith("POST /there HTTP/1.1\r\n"));
        EXPECT_THAT(target.received().at(0), HasSubstr("\r\n\r\n{\"kept\":true}"));
    }
}

TEST(HttpRedirect, IsFollowedTenTimesAndNotEleven) {
    for (const std::size_t hops : {10U, 11U}) {
        RawServer server([&](RawServer::Connection& connection) {
            connection.readRequest();
            connection.send(connection.number() < hops
                                ? redirect(302, "/hop" + std::to_string(connection.number()))
                                : RawServer::httpAnswer(200, "arrived"));
        });
        CurlHttpClient client("");
        const HttpOutcome outcome = fetch(client, getting(server.url("/")));
        EXPECT_EQ(server.connectionCount(), 11U);
        if (hops == 10) {
            EXPECT_EQ(outcome.body, "arrived") << outcome.errorText();
        } else {
            EXPECT_THAT(outcome.errorText(), HasSubstr("10"));
            EXPECT_FALSE(outcome.body);
            EXPECT_EQ(outcome.status(), 302);
        }
    }
}

TEST(HttpRedirect, NeverLeavesHttps) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    RawServer plain([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, "overheard"));
    });
    const LocalAuthority authority;
    const Nginx nginx(authority.nginx("location / { return 301 " + plain.url("/there") + "; }"));
    CurlHttpClient client(authority.file());
    const HttpOutcome outcome = fetch(client, posting(nginx.url("/v1/event"), "{}"));
    EXPECT_THAT(outcome.errorText(), HasSubstr("http"));
    EXPECT_FALSE(outcome.body);
    EXPECT_EQ(outcome.status(), 301);
    EXPECT_EQ(outcome.response.value_or(HttpResponse{}).url, nginx.url("/v1/event"));
    EXPECT_EQ(plain.connectionCount(), 0U);
}

TEST(HttpRedirect, ToAnotherSchemeIsAnError) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(redirect(302, "file:///etc/passwd"));
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, getting(server.url("/")));
    EXPECT_TRUE(outcome.error);
    EXPECT_FALSE(outcome.body);
}

TEST(HttpRedirect, ThatFailsKeepsTheLastAnswer) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        if (connection.number() == 0) {
            connection.send(redirect(302, "/gone"));
        }
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, getting(server.url("/start")));
    EXPECT_TRUE(outcome.error);
    EXPECT_EQ(outcome.status(), 302);
    EXPECT_EQ(outcome.response.value_or(HttpResponse{}).url, server.url("/start"));
}

/// A reset may overtake data sent before it.
constexpr int eitherWay = -1;

/// A faulty server's behaviour after reading the request.
struct Fault {
    const char* name;
    std::function<void(RawServer::Connection&)> answer;
    /// 0: no complete headers arrived.
    int status;
};

class BrokenHttpAnswer : public testing::TestWithParam<Fault> {};

TEST_P(BrokenHttpAnswer, IsAnErrorWithoutABody) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        GetParam().answer(connection);
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, posting(server.url("/v1/event"), "{}"));
    EXPECT_TRUE(outcome.error);
    EXPECT_NE(outcome.errorText(), "");
    EXPECT_FALSE(outcome.body);
    if (GetParam().status != eitherWay) {
        EXPECT_EQ(outcome.status(), GetParam().status);
        EXPECT_EQ(outcome.response.has_value(), GetParam().status != 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Faults, BrokenHttpAnswer,
    testing::Values(
        Fault{"Nothing", [](RawServer::Connection&) {}, 0},
        Fault{"ResetBeforeTheHead", [](RawServer::Connection& connection) { connection.reset(); }, 0},
        Fault{"HalfAHead",
              [](RawServer::Connection& connection) { connection.send("HTTP/1.1 200 OK\r\nContent-Le"); }, 0},
        Fault{"CutOffBody",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
              },
              200},
        Fault{"CutOffChunks",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n8\r\nhalf");
              },
              200},
        Fault{"BadChunks",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nmany\r\nhalf\r\n");
              },
              200},
        Fault{"ResetInMidBody",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf");
                  connection.reset();
              },
              eitherWay},
        Fault{"BrokenGzip",
              [](RawServer::Connection& connection) {
                  connection.send(
                      "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 8\r\n\r\nnot gzip");
              },
              200},
        Fault{"Garbage",
              [](RawServer::Connection& connection) {
                  connection.send(std::string("\x16\x03\x01\x00\xFF\x00garbage\r\n\r\n", 17));
              },
              0},
        Fault{"SomebodyElsesProtocol",
              [](RawServer::Connection& connection) { connection.send("220 mail.invalid ESMTP ready\r\n"); },
              0},
        Fault{"HeaderOfOneMebibyte",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nX-Long: " + std::string(std::size_t{1} << 20U, 'h') +
                                  "\r\nContent-Length: 0\r\n\r\n");
                  connection.hang();
              },
              0},
        Fault{"EndlessHeaders",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\n");
                  while (connection.send("X-Another: one\r\n")) {
                  }
              },
              0},
        Fault{"EndlessHeader",
              [](RawServer::Connection& connection) {
                  connection.send("HTTP/1.1 200 OK\r\nX-Endless: ");
                  while (connection.send("and so on ")) {
                  }
              },
              0}),
    [](const auto& testCase) { return testCase.param.name; });

/// A body of 2,000 bytes, delimited in different ways.
class HttpResponseLimit : public testing::TestWithParam<Fault> {};

TEST_P(HttpResponseLimit, IsTheLargestBodyAccepted) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        GetParam().answer(connection);
    });
    CurlHttpClient client("");
    HttpRequest request = getting(server.url("/"));
    request.responseLimit = 2000;
    const HttpOutcome fits = fetch(client, request);
    EXPECT_EQ(fits.errorText(), "no error");
    EXPECT_EQ(fits.body, std::string(2000, 'b'));

    request.responseLimit = 1999;
    const HttpOutcome exceeds = fetch(client, request);
    EXPECT_EQ(exceeds.errorText(), "The response body exceeds the size limit");
    EXPECT_FALSE(exceeds.body);
    EXPECT_EQ(exceeds.status(), 200);
}

INSTANTIATE_TEST_SUITE_P(
    Ways, HttpResponseLimit,
    testing::Values(Fault{"Declared",
                          [](RawServer::Connection& connection) {
                              connection.send(RawServer::httpAnswer(200, std::string(2000, 'b')));
                          },
                          200},
                    Fault{"UntilTheConnectionEnds",
                          [](RawServer::Connection& connection) {
                              connection.send("HTTP/1.1 200 OK\r\n\r\n" + std::string(2000, 'b'));
                          },
                          200},
                    Fault{"InChunks",
                          [](RawServer::Connection& connection) {
                              connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
                              for (int chunk = 0; chunk < 20; ++chunk) {
                                  connection.send("64\r\n" + std::string(100, 'b') + "\r\n");
                              }
                              connection.send("0\r\n\r\n");
                          },
                          200}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(HttpResponseLimitOfCompressedAnswers, AppliesToTheDecompressedBytes) {
    if (!Nginx::isInstalled()) {
        GTEST_SKIP() << "nginx is not installed";
    }
    const Nginx nginx(
        {.certificate = "", .privateKey = "", .server = "root .; gzip on; gzip_types *; location / { }"});
    support::writeFile(nginx.folder() / "zeros.json", std::string(std::size_t{4} << 20U, '0'));
    CurlHttpClient client("");
    HttpRequest request = getting(nginx.url("/zeros.json"));
    request.responseLimit = std::size_t{1} << 20U;
    const HttpOutcome outcome = fetch(client, request);
    EXPECT_EQ(outcome.header("Content-Encoding"), "gzip");
    EXPECT_EQ(outcome.errorText(), "The response body exceeds the size limit");
}

TEST(HttpResponseLimitOfHead, IgnoresTheBodyThatIsNotSent) {
    RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 200 OK\r\nContent-Length: 1000000000000\r\n\r\n");
    });
    CurlHttpClient client("");
    HttpRequest request = getting(server.url("/film.mp4"));
    request.method = HttpMethod::head;
    request.responseLimit = 10;
    EXPECT_EQ(fetch(client, request).errorText(), "no error");
}

TEST(HttpRequest, ToAHostThatDoesNotExistIsAnError) {
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, posting("https://service.vorna.invalid/v1/event", "{}"));
    EXPECT_THAT(outcome.errorText(), HasSubstr("service.vorna.invalid"));
    EXPECT_FALSE(outcome.body);
    EXPECT_FALSE(outcome.response);
}

TEST(HttpRequest, ToAClosedPortIsAnError) {
    std::string address;
    {
        const RawServer server([](RawServer::Connection&) {});
        address = server.url("/");
    }
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, getting(address));
    EXPECT_THAT(outcome.errorText(), AnyOf(HasSubstr("refused"), HasSubstr("connect")));
    EXPECT_FALSE(outcome.body);
    EXPECT_FALSE(outcome.response);
}

}  // namespace
}  // namespace vorna
