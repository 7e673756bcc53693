// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/curl/CurlHttpClient.h>

#include <tests/platform/curl/CurlHttpClientOutcomes.h>
#include <tests/platform/curl/LocalAuthority.h>
#include <tests/support/Nginx.h>
#include <tests/support/RawServer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <string>

namespace vorna {
namespace {

using devserver::CertificateWithKey;
using support::Nginx;
using support::RawServer;
using testing::AnyOf;
using testing::HasSubstr;
using testing::StartsWith;

/// A trusted server gives an answer, any other an error with the reason.
class HttpsServer : public testing::Test {
  protected:
    void SetUp() override {
        if (!Nginx::isInstalled()) {
            GTEST_SKIP() << "nginx is not installed";
        }
    }

    HttpOutcome askServerWith(const CertificateWithKey& identity, const std::string& trusted) {
        nginx_.emplace(
            Nginx::Options{.certificate = identity.certificate, .privateKey = identity.privateKey});
        CurlHttpClient client(trusted);
        return fetch(client, posting(nginx_->url("/v1/event"), R"({"secret":1})"));
    }

    void expectRefusal(const HttpOutcome& outcome, const testing::Matcher<const std::string&>& reason) {
        EXPECT_THAT(outcome.errorText(), reason);
        EXPECT_FALSE(outcome.body);
        EXPECT_FALSE(outcome.response);
        nginx_->stop();
        EXPECT_EQ(nginx_->requests().size(), 0U);
    }

    const LocalAuthority authority_;
    std::optional<Nginx> nginx_;
};

TEST_F(HttpsServer, OfTheGivenAuthorityIsTrusted) {
    const HttpOutcome outcome = askServerWith(authority_.good(), authority_.file());
    EXPECT_EQ(outcome.status(), 200) << outcome.errorText();
}

TEST_F(HttpsServer, OfAnUnknownAuthorityIsRefused) {
    const LocalAuthority other;
    expectRefusal(askServerWith(authority_.good(), other.file()), HasSubstr("certificate"));
}

TEST_F(HttpsServer, OfAnAuthorityUnknownToTheSystemIsRefused) {
    expectRefusal(askServerWith(authority_.good(), ""), HasSubstr("certificate"));
}

TEST_F(HttpsServer, WithAnExpiredCertificateIsRefused) {
    expectRefusal(askServerWith(authority_.expired(), authority_.file()), HasSubstr("expired"));
}

TEST_F(HttpsServer, WithASelfSignedCertificateIsRefused) {
    expectRefusal(askServerWith(LocalAuthority::selfSigned(), authority_.file()), HasSubstr("self-signed"));
}

TEST_F(HttpsServer, WithACertificateForAnotherNameIsRefused) {
    expectRefusal(askServerWith(authority_.forAnotherName(), authority_.file()), HasSubstr("localhost"));
}

TEST_F(HttpsServer, IsRefusedIfTheFileOfAuthoritiesIsMissing) {
    expectRefusal(askServerWith(authority_.good(), "/nonexistent/ca.pem"), HasSubstr("/nonexistent/ca.pem"));
}

TEST_F(HttpsServer, WithTls12IsAccepted) {
    Nginx::Options options = authority_.nginx("ssl_protocols TLSv1.2; location / { return 200; }");
    nginx_.emplace(options);
    CurlHttpClient client(authority_.file());
    EXPECT_EQ(fetch(client, getting(nginx_->url("/"))).status(), 200);
}

TEST_F(HttpsServer, WithTls11IsRefused) {
    // At this security level OpenSSL itself would accept the old protocol.
    nginx_.emplace(authority_.nginx("ssl_protocols TLSv1.1; ssl_ciphers DEFAULT@SECLEVEL=0; "
                                    "location / { return 200; }"));
    CurlHttpClient client(authority_.file());
    expectRefusal(fetch(client, getting(nginx_->url("/"))),
                  AnyOf(HasSubstr("protocol version"), HasSubstr("unsupported protocol")));
}

TEST_F(HttpsServer, ThatSpeaksPlainHttpIsRefused) {
    const RawServer plain([](RawServer::Connection& connection) {
        connection.send(RawServer::httpAnswer(200, "in the clear"));
    });
    CurlHttpClient client(authority_.file());
    const HttpOutcome outcome =
        fetch(client, getting("https://127.0.0.1:" + std::to_string(plain.port()) + "/"));
    EXPECT_TRUE(outcome.error);
    EXPECT_FALSE(outcome.response);
}

TEST(PlainHttp, ToLocalhostIsSent) {
    const RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, ""));
    });
    CurlHttpClient client("");
    EXPECT_EQ(fetch(client, getting("http://localhost:" + std::to_string(server.port()) + "/")).status(),
              200);
}

/// One of this machine's addresses that other machines can reach.
std::optional<sockaddr_in> ownAddress() {
    ifaddrs* list = nullptr;
    std::optional<sockaddr_in> found;
    if (getifaddrs(&list) == 0) {
        for (const ifaddrs* entry = list; entry != nullptr && !found; entry = entry->ifa_next) {
            if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET) {
                const auto& address = reinterpret_cast<const sockaddr_in&>(*entry->ifa_addr);
                if (ntohl(address.sin_addr.s_addr) >> 24U != 127U) {
                    found = address;
                }
            }
        }
        freeifaddrs(list);
    }
    return found;
}

/// Listens on an address that other machines can reach.
class ReachableListener {
  public:
    explicit ReachableListener(sockaddr_in address)
        : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address.sin_port = 0;
        socklen_t size = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener_, generic, size) != 0 || listen(listener_, 8) != 0 ||
            getsockname(listener_, generic, &size) != 0) {
            std::abort();
        }
        std::array<char, INET_ADDRSTRLEN> text{};
        inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
        url_ = std::string("http://") + text.data() + ":" + std::to_string(ntohs(address.sin_port)) + "/";
    }

    ReachableListener(const ReachableListener&) = delete;
    ReachableListener& operator=(const ReachableListener&) = delete;
    ReachableListener(ReachableListener&&) = delete;
    ReachableListener& operator=(ReachableListener&&) = delete;

    ~ReachableListener() { close(listener_); }

    const std::string& url() const { return url_; }

    bool wasConnectedTo() const {
        pollfd waiting{listener_, POLLIN, 0};
        return poll(&waiting, 1, 0) != 0;
    }

  private:
    int listener_;
    std::string url_;
};

TEST(PlainHttp, ToAnotherMachineIsRefusedBeforeAnythingIsSent) {
    const std::optional<sockaddr_in> address = ownAddress();
    if (!address) {
        GTEST_SKIP() << "this machine has only loopback addresses";
    }
    const ReachableListener listener(*address);
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, posting(listener.url(), "{}"));
    EXPECT_EQ(outcome.errorText(), "Only https is allowed, or http to a loopback address");
    EXPECT_FALSE(outcome.body);
    EXPECT_FALSE(outcome.response);
    EXPECT_FALSE(listener.wasConnectedTo());
}

TEST(PlainHttp, RedirectedToAnotherMachineIsRefusedBeforeAnythingIsSent) {
    const std::optional<sockaddr_in> address = ownAddress();
    if (!address) {
        GTEST_SKIP() << "this machine has only loopback addresses";
    }
    const ReachableListener listener(*address);
    const RawServer server([&](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 307 Elsewhere\r\nLocation: " + listener.url() +
                        "\r\nContent-Length: 0\r\n\r\n");
    });
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, posting(server.url("/"), "{}"));
    EXPECT_TRUE(outcome.error);
    EXPECT_FALSE(outcome.body);
    EXPECT_FALSE(listener.wasConnectedTo());
}

TEST(OtherSchemes, AreRefused) {
    CurlHttpClient client("");
    for (const char* const url :
         {"ftp://127.0.0.1/", "ws://127.0.0.1/", "gopher://127.0.0.1/", "httpx://127.0.0.1/"}) {
        const HttpOutcome outcome = fetch(client, getting(url));
        EXPECT_EQ(outcome.errorText(), "Only https is allowed, or http to a loopback address") << url;
        EXPECT_FALSE(outcome.body) << url;
    }
}

/// Changes the variables of this process; each test has its own process.
class HttpProxy : public testing::Test {
  protected:
    void SetUp() override {
        for (const char* const name :
             {"no_proxy", "NO_PROXY", "http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
            unsetenv(name);  // NOLINT(concurrency-mt-unsafe): no other thread yet
        }
    }

    static void set(const char* name, const std::string& value) {
        ASSERT_EQ(setenv(name, value.c_str(), 1), 0);  // NOLINT(concurrency-mt-unsafe): no other thread yet
    }

    const RawServer proxy_{[](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send("HTTP/1.1 502 Bad Gateway\r\nX-Proxy: yes\r\nContent-Length: 0\r\n\r\n");
    }};
};

TEST_F(HttpProxy, IsTakenFromTheEnvironmentForHttps) {
    set("https_proxy", proxy_.url(""));
    CurlHttpClient client("");
    const HttpOutcome outcome = fetch(client, posting("https://service.vorna.invalid/v1/event", "{}"));
    EXPECT_THAT(outcome.errorText(), HasSubstr("502"));
    EXPECT_FALSE(outcome.response) << "the proxy's answer is not the server's";
    EXPECT_THAT(proxy_.received().at(0), StartsWith("CONNECT service.vorna.invalid:443 HTTP/1.1\r\n"));
}

TEST_F(HttpProxy, IsBypassedForHostsInNoProxy) {
    set("https_proxy", proxy_.url(""));
    set("no_proxy", "service.vorna.invalid");
    CurlHttpClient client("");
    EXPECT_TRUE(fetch(client, posting("https://service.vorna.invalid/v1/event", "{}")).error);
    EXPECT_EQ(proxy_.connectionCount(), 0U);
}

TEST_F(HttpProxy, IsNotUsedForPlainHttp) {
    const RawServer server([](RawServer::Connection& connection) {
        connection.readRequest();
        connection.send(RawServer::httpAnswer(200, ""));
    });
    set("http_proxy", proxy_.url(""));
    set("all_proxy", proxy_.url(""));
    CurlHttpClient client("");
    EXPECT_EQ(fetch(client, posting(server.url("/v1/event"), "{}")).status(), 200);
    EXPECT_EQ(proxy_.connectionCount(), 0U);
}

}  // namespace
}  // namespace vorna
