// SPDX-License-Identifier: Apache-2.0
// The running program: libcurl behaves as clients do, a bare socket as none should.

#include <tests/support/TemporaryFolder.h>
#include <tests/tools/devserver/DevServerProcess.h>
#include <tests/tools/devserver/HttpClient.h>
#include <tools/devserver/CertificateAuthority.h>

#include <arpa/inet.h>
#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <memory>
#include <random>
#include <sstream>
#include <thread>
#include <vector>

namespace vorna::devserver {
namespace {

using support::contentsOf;
using support::TemporaryFolder;
using testing::AllOf;
using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::size_t mebibyte = 1024UL * 1024;
constexpr std::size_t mostBodyBytes = 64 * mebibyte;

std::string eventNamed(const std::string& name) {
    return R"({"name":")" + name +
           R"(","createDate":1,"endDate":2,"customValue":"","deviceData":{"appId":"x"}})";
}

std::string numbered(int client, int event) {
    return std::to_string(client).append("-").append(std::to_string(event));
}

class Program : public testing::Test {
  protected:
    // The program with its state in this test's folder.
    [[nodiscard]] std::unique_ptr<DevServerProcess> start(std::vector<std::string> arguments = {}) const {
        arguments.insert(arguments.end(), {"--state", (folder_.path() / "state").string()});
        return std::make_unique<DevServerProcess>(arguments);
    }

    [[nodiscard]] HttpClient client(const DevServerProcess& server) const {
        const bool plain = server.url().starts_with("http://");
        return {server.url(), plain ? std::string() : (folder_.path() / "state" / "ca.pem").string()};
    }

    [[nodiscard]] std::string events() const {
        return contentsOf(folder_.path() / "state" / "events.ndjson");
    }

    TemporaryFolder folder_;
};

boost::json::value statistics(HttpClient& client) {
    return boost::json::parse(client.get("/control/statistics").body);
}

void setFault(HttpClient& client, std::string_view fault) {
    ASSERT_EQ(client.post("/control/faults", fault).status, 200) << fault;
}

TEST_F(Program, IsNotControlledByWebPages) {
    const auto server = start({"--http"});
    auto http = client(*server);
    const auto statusWith = [&](const std::vector<std::string>& headers) {
        return http.send("GET", "/control/faults", {}, headers).status;
    };
    EXPECT_EQ(statusWith({}), 200);
    EXPECT_EQ(statusWith({"Origin: " + server->url()}), 200);
    EXPECT_EQ(statusWith({"Host: evil.test"}), 403);
    EXPECT_EQ(statusWith({"Origin: http://evil.test"}), 403);
    EXPECT_EQ(statusWith({"Origin: null"}), 403);
    const std::string twoHosts = "GET /control/faults HTTP/1.1\r\nHost: localhost\r\nHost: evil.test\r\n"
                                 "Connection: close\r\n\r\n";
    EXPECT_THAT(speakRaw(server->port(), twoHosts), StartsWith("HTTP/1.1 403 "));
}

TEST_F(Program, RefusesAnEndlesslyNestedDocument) {
    const auto server = start({"--http"});
    auto http = client(*server);
    const std::string nested(60'000'000, '[');
    for (const char* const path : {"/v1/event", "/v1/config", "/control/faults"}) {
        const Exchange exchange = http.post(path, nested);
        EXPECT_EQ(exchange.result, CURLE_OK) << path;
        EXPECT_EQ(exchange.status, 400) << path;
    }
    EXPECT_EQ(http.post("/v1/event", eventNamed("afterwards")).status, 200);
}

TEST_F(Program, IsControlledUnderItsOtherNames) {
    const auto server = start({"--name", "devserver.test"});
    auto http = client(*server);
    EXPECT_EQ(http.send("GET", "/control/faults", {}, {"Host: devserver.test"}).status, 200);
    EXPECT_EQ(http.send("GET", "/control/faults", {}, {"Host: other.test"}).status, 403);
}

// --- starting and stopping

TEST_F(Program, PrintsItsAddressAndAuthority) {
    const auto server = start();
    EXPECT_THAT(server->url(), StartsWith("https://127.0.0.1:"));
    EXPECT_EQ(server->waitForLine(""),
              "certificate authority: " + (folder_.path() / "state" / "ca.pem").string());
    auto http = client(*server);
    const Exchange exchange = http.post("/v1/event", eventNamed("first"));
    EXPECT_EQ(exchange.result, CURLE_OK);
    EXPECT_EQ(exchange.status, 200);
    EXPECT_EQ(exchange.headers.at("content-type"), "application/json");
    EXPECT_EQ(exchange.body, "{}");
    EXPECT_EQ(server->waitForLine("event  "), "event  first    1..2");
    EXPECT_EQ(events(), eventNamed("first") + "\n");
}

TEST_F(Program, IsNotTrustedByAClientWithoutItsAuthority) {
    const auto server = start();
    const TemporaryFolder elsewhere;
    const auto stranger =
        CertificateAuthority::create("Stranger", std::chrono::system_clock::now() - std::chrono::hours{1},
                                     std::chrono::system_clock::now() + std::chrono::hours{1});
    writeCertificateFile(elsewhere.path() / "ca.pem", stranger.certificate());
    HttpClient http(server->url(), (elsewhere.path() / "ca.pem").string());
    EXPECT_EQ(http.get("/v1/event").result, CURLE_PEER_FAILED_VERIFICATION);
}

TEST_F(Program, KeepsItsAuthorityAndEventsAcrossStarts) {
    std::string authority;
    {
        const auto server = start();
        authority = contentsOf(folder_.path() / "state" / "ca.pem");
        auto http = client(*server);
        EXPECT_EQ(http.post("/v1/event", eventNamed("before")).status, 200);
    }
    const auto server = start();
    auto http = client(*server);
    EXPECT_EQ(http.post("/v1/event", eventNamed("after")).status, 200);
    EXPECT_EQ(contentsOf(folder_.path() / "state" / "ca.pem"), authority);
    EXPECT_EQ(events(), eventNamed("before") + "\n" + eventNamed("after") + "\n");
}

TEST_F(Program, UsesTheGivenCertificate) {
    const auto now = std::chrono::system_clock::now();
    const auto authority =
        CertificateAuthority::create("Given", now - std::chrono::hours{1}, now + std::chrono::hours{1});
    const auto expired = authority.issue({"localhost",
                                          {"localhost"},
                                          {"127.0.0.1"},
                                          now - std::chrono::hours{3},
                                          now - std::chrono::hours{2}});
    const auto valid = authority.issue({"localhost",
                                        {"localhost"},
                                        {"127.0.0.1"},
                                        now - std::chrono::hours{1},
                                        now + std::chrono::hours{1}});
    const auto trusted = folder_.path() / "given-ca.pem";
    writeCertificateFile(trusted, authority.certificate());
    for (const auto& [identity, expected] :
         {std::pair(valid, CURLE_OK), std::pair(expired, CURLE_PEER_FAILED_VERIFICATION)}) {
        writeCertificateFile(folder_.path() / "given.pem", identity.certificate);
        writePrivateKeyFile(folder_.path() / "given.key", identity.privateKey);
        const auto server = start({"--certificate", (folder_.path() / "given.pem").string(), "--key",
                                   (folder_.path() / "given.key").string()});
        HttpClient http(server->url(), trusted.string());
        EXPECT_EQ(http.post("/v1/event", eventNamed("a")).result, expected);
    }
    EXPECT_FALSE(std::filesystem::exists(folder_.path() / "state" / "ca.pem"));
}

TEST_F(Program, ServesPlainHttpOnLoopbackOnly) {
    const auto server = start({"--http"});
    EXPECT_THAT(server->url(), StartsWith("http://127.0.0.1:"));
    auto http = client(*server);
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 200);

    const auto end = start({"--http", "--address", "0.0.0.0"})->end(0);
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.output, "");
    EXPECT_THAT(end.problem, HasSubstr("loopback"));
}

TEST_F(Program, ListensOnTheOtherLoopbackAddressToo) {
    const auto server = start({"--address", "::1"});
    if (server->url().empty()) {
        const auto end = server->end(0);
        ASSERT_THAT(end.problem, HasSubstr("cannot listen on ::1"));
        GTEST_SKIP() << "this machine has no IPv6: " << end.problem;
    }
    EXPECT_THAT(server->url(), StartsWith("https://[::1]:"));
    auto http = client(*server);
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 200);
}

TEST_F(Program, ReportsWhyItCannotStart) {
    const auto running = start();
    const std::string port = std::to_string(running->port());
    const std::string file = folder_.write("file", "").string();
    const std::string broken = folder_.write("broken.pem", "garbage").string();

    struct Row {
        std::vector<std::string> arguments;
        int status;
        std::string problem;
    };

    const std::vector<Row> cases = {
        {{"--port", port}, 1, "cannot listen on 127.0.0.1 port " + port + ": Address already in use"},
        {{"--address", "nonsense"}, 1, "not an IP address: nonsense"},
        {{"--events", folder_.path().string()}, 1, "cannot write " + folder_.path().string()},
        {{"--events", file + "/events"}, 1, "cannot write " + file + "/events"},
        {{"--state", file}, 1, file},
        {{"--media", file}, 1, "cannot serve the folder " + file},
        {{"--certificate", broken, "--key", broken}, 1, "cannot use the certificate " + broken},
        {{"--certificate", file + "-none", "--key", broken},
         1,
         "cannot use the certificate " + file + "-none"},
        {{"--fault", "status=1"}, 2, "status: from 200 to 999"},
        {{"--nonsense"}, 2, "--nonsense"},
    };

    for (const auto& one : cases) {
        std::vector<std::string> arguments = one.arguments;
        if (arguments.front() != "--state") {
            arguments.insert(arguments.end(), {"--state", (folder_.path() / "state").string()});
        }
        const auto end = DevServerProcess(arguments).end(0);
        EXPECT_EQ(end.status, one.status) << one.problem;
        EXPECT_THAT(end.problem, AllOf(StartsWith("vorna-devserver: "), HasSubstr(one.problem)));
    }
}

TEST_F(Program, ExitsOnASignalWithASummary) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const auto server = start();
        auto http = client(*server);
        EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 200);
        const auto end = server->end(signal);
        EXPECT_EQ(end.status, 0);
        EXPECT_THAT(
            end.output,
            HasSubstr("vorna-devserver stopped: 1 event recorded, 0 rejected; 1 request on 1 connection\n"));
        EXPECT_EQ(end.problem, "");
    }
}

TEST_F(Program, ExitsOnRequest) {
    const auto server = start();
    auto http = client(*server);
    EXPECT_EQ(http.post("/control/shutdown", "").status, 200);
    EXPECT_EQ(server->end(0).status, 0);
}

TEST_F(Program, PrintsNothingForARequestWhenQuiet) {
    const auto server = start({"--quiet"});
    auto http = client(*server);
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 200);
    EXPECT_EQ(http.post("/v1/event", "{}").status, 400);
    EXPECT_THAT(server->end(SIGTERM).output,
                testing::Not(AnyOf(HasSubstr("event  "), HasSubstr("rejected  "))));
}

// --- HTTP

TEST_F(Program, ServesManyRequestsOnOneConnection) {
    const auto server = start({"--quiet"});
    auto http = client(*server);
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(http.post("/v1/event", eventNamed("a")).status, 200);
    }
    const auto counts = statistics(http);
    EXPECT_EQ(counts.at("connections").at("accepted"), 1);
    EXPECT_EQ(counts.at("connections").at("open"), 1);
    EXPECT_EQ(counts.at("events").at("recorded"), 200);
}

TEST_F(Program, ClosesWhenTheClientAsksForIt) {
    const auto server = start({"--http"});
    EXPECT_THAT(
        speakRaw(server->port(), "GET /x HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n"),
        AllOf(StartsWith("HTTP/1.1 404 Not Found\r\n"), HasSubstr("Connection: close\r\n"), EndsWith("}")));
    EXPECT_THAT(speakRaw(server->port(), "GET /x HTTP/1.0\r\n\r\n"),
                AllOf(StartsWith("HTTP/1.0 404"), EndsWith("}")));
}

TEST_F(Program, AnswersPipelinedRequestsInOrder) {
    const auto server = start({"--http"});
    const std::string body = eventNamed("chunked");
    std::ostringstream size;
    size << std::hex << body.size();
    const std::string answers =
        speakRaw(server->port(), "POST /v1/event HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n" +
                                     size.str() + "\r\n" + body +
                                     "\r\n0\r\n\r\n"
                                     "GET /v1/event HTTP/1.1\r\nHost: x\r\n\r\n"
                                     "GET /x HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    const std::size_t first = answers.find("HTTP/1.1 200");
    const std::size_t second = answers.find("HTTP/1.1 405");
    const std::size_t third = answers.find("HTTP/1.1 404");
    EXPECT_EQ(first, 0U) << answers;
    EXPECT_LT(first, second);
    EXPECT_LT(second, third);
    EXPECT_NE(third, std::string::npos);
    EXPECT_EQ(events(), body + "\n");
}

TEST_F(Program, SendsContinueWhenExpected) {
    const auto server = start({"--http"});
    const std::string body = eventNamed("invited");
    EXPECT_THAT(speakRaw(server->port(), "POST /v1/event HTTP/1.1\r\nHost: x\r\nConnection: close\r\n"
                                         "Expect: 100-continue\r\nContent-Length: " +
                                             std::to_string(body.size()) + "\r\n\r\n" + body),
                StartsWith("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n"));
}

TEST_F(Program, RecordsAnEventNameOfAMebibyte) {
    const auto server = start();
    auto http = client(*server);
    const std::string event = eventNamed(std::string(mebibyte, 'n'));
    EXPECT_EQ(http.post("/v1/event", event).status, 200);
    EXPECT_EQ(events(), event + "\n");
    EXPECT_THAT(server->waitForLine("event  ").value_or(""), HasSubstr("... (1048576 bytes)"));
}

TEST_F(Program, AcceptsBodiesUpToALimit) {
    const auto server = start({"--quiet"});
    auto http = client(*server);
    http.setTimeout(200'000);  // this many bytes take long under a sanitizer on a busy machine
    const std::string largest(mostBodyBytes, ' ');
    EXPECT_EQ(http.post("/v1/event", largest).status, 400) << "read to its end, and found to be no event";
    const Exchange refused = http.post("/v1/event", largest + " ");
    EXPECT_EQ(refused.status, 413);
    EXPECT_THAT(refused.body, StartsWith("{\"error\":"));
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 200);
}

TEST_F(Program, RejectsALengthBeyondTheLimitBeforeTheBodyIsSent) {
    const auto server = start({"--http"});
    const std::string answer =
        speakRaw(server->port(), "POST /v1/event HTTP/1.1\r\nHost: x\r\nContent-Length: 67108865\r\n\r\n");
    EXPECT_THAT(answer, AllOf(StartsWith("HTTP/1.1 413"), HasSubstr("Connection: close\r\n")));
}

TEST_F(Program, ServesMediaWithRanges) {
    std::string film;
    std::minstd_rand random(7);  // NOLINT(cert-msc32-c, cert-msc51-cpp): reproducible
    std::generate_n(std::back_inserter(film), 1'000'000, [&random] { return static_cast<char>(random()); });
    folder_.write("media/films/a film.mp4", film);
    const auto server = start({"--media", (folder_.path() / "media").string()});
    auto http = client(*server);

    const Exchange whole = http.get("/media/films/a%20film.mp4");
    EXPECT_EQ(whole.status, 200);
    EXPECT_EQ(whole.headers.at("content-length"), "1000000");
    EXPECT_EQ(whole.headers.at("content-type"), "video/mp4");
    EXPECT_TRUE(whole.body == film);

    const Exchange part = http.send("GET", "/media/films/a%20film.mp4", {}, {"Range: bytes=100000-299999"});
    EXPECT_EQ(part.status, 206);
    EXPECT_EQ(part.headers.at("content-range"), "bytes 100000-299999/1000000");
    EXPECT_TRUE(part.body == film.substr(100'000, 200'000));

    const Exchange head = http.send("HEAD", "/media/films/a%20film.mp4", {});
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.headers.at("content-length"), "1000000");
    EXPECT_EQ(head.body, "");

    EXPECT_EQ(http.get("/media/films/a%20film.mp4").status, 200) << "the connection is still in step";
    EXPECT_EQ(http.get("/media/../state/ca.key").status, 404);
    EXPECT_EQ(http.get("/media/%2e%2e/state/ca.key").status, 404);
    EXPECT_EQ(statistics(http).at("connections").at("accepted"), 1);
}

TEST_F(Program, ServesTheConfigurationAsItIsEdited) {
    const auto server = start();
    auto http = client(*server);
    EXPECT_EQ(http.post("/v1/config", R"({"deviceData":{}})").body, R"({"configs":{}})");
    folder_.write("state/config.json", R"({"color":"red"})");
    EXPECT_EQ(http.post("/v1/config", R"({"deviceData":{}})").body, R"({"configs":{"color":"red"}})");
    folder_.write("state/config.json", "{oops");
    EXPECT_EQ(http.post("/v1/config", R"({"deviceData":{}})").status, 500);
    EXPECT_THAT(server->end(SIGTERM).problem, HasSubstr("config.json: not JSON"));
}

// --- TLS

TEST_F(Program, NegotiatesHttp11DuringTheHandshake) {
    const auto server = start();
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()),
                                                                    &SSL_CTX_free);
    constexpr std::array<unsigned char, 12> offered{2, 'h', '2', 8, 'h', 't', 't', 'p', '/', '1', '.', '1'};
    const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(server->port()));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::connect(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    const std::unique_ptr<SSL, decltype(&SSL_free)> connection(SSL_new(context.get()), &SSL_free);
    SSL_set_alpn_protos(connection.get(), offered.data(), offered.size());
    SSL_set_fd(connection.get(), socket.number());
    ASSERT_EQ(SSL_connect(connection.get()), 1);
    const unsigned char* chosen = nullptr;
    unsigned int length = 0;
    SSL_get0_alpn_selected(connection.get(), &chosen, &length);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(chosen), length), "http/1.1");
    EXPECT_GE(SSL_version(connection.get()), TLS1_2_VERSION);
}

// --- faults

TEST_F(Program, AnswersWithTheStatusOfAFault) {
    const auto server = start({"--fault", "path=/v1/event,count=2,status=500", "--fault",
                               R"(path=/v1/config,status=201,body={"configs":{}})"});
    auto http = client(*server);
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 500);
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 500);
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).status, 200);
    const Exchange created = http.post("/v1/config", R"({"deviceData":{}})");
    EXPECT_EQ(created.status, 201);
    EXPECT_EQ(created.body, R"({"configs":{}})");

    setFault(http, R"({"path":"/v1/event","status":204})");
    const Exchange empty = http.post("/v1/event", eventNamed("a"));
    EXPECT_EQ(empty.result, CURLE_OK);
    EXPECT_EQ(empty.status, 204);
    EXPECT_EQ(empty.headers.count("content-length"), 0U);

    EXPECT_EQ(http.send("DELETE", "/control/faults", {}).body, R"({"faults":[]})");
    setFault(http, R"({"status":301,"location":"https://other.example/v1/event"})");
    const Exchange moved = http.post("/v1/event", eventNamed("a"));
    EXPECT_EQ(moved.status, 301);
    EXPECT_EQ(moved.headers.at("location"), "https://other.example/v1/event");
    EXPECT_EQ(statistics(http).at("connections").at("accepted"), 1) << "none of these ends the connection";
}

TEST_F(Program, DropsAConnectionWithoutAnAnswer) {
    const auto server = start({"--http"});
    auto http = client(*server);
    setFault(http, R"({"drop":true})");
    EXPECT_EQ(speakRaw(server->port(), "GET /x HTTP/1.1\r\nHost: x\r\n\r\n"), "");
    EXPECT_EQ(http.post("/v1/event", eventNamed("a")).result, CURLE_GOT_NOTHING);
    EXPECT_EQ(events(), "");
}

TEST_F(Program, DropsAnEncryptedConnectionWithoutAnAnswer) {
    const auto server = start({"--fault", "drop"});
    auto http = client(*server);
    EXPECT_THAT(http.post("/v1/event", eventNamed("a")).result, AnyOf(CURLE_GOT_NOTHING, CURLE_RECV_ERROR));
}

TEST_F(Program, ResetsAConnection) {
    const auto server = start({"--http", "--fault", "reset"});
    EXPECT_EQ(speakRaw(server->port(), "GET /x HTTP/1.1\r\nHost: x\r\n\r\n"), "(reset)");
}

TEST_F(Program, CutsABodyOff) {
    folder_.write("media/clip.mp4", std::string(300'000, 'x'));
    for (const char* scheme : {"--http", "--quiet"}) {
        const auto server =
            start({scheme, "--media", (folder_.path() / "media").string(), "--fault", "cutBody"});
        auto http = client(*server);
        const Exchange event = http.post("/v1/event", eventNamed("a"));
        EXPECT_EQ(event.result, CURLE_PARTIAL_FILE) << scheme;
        EXPECT_EQ(event.headers.at("content-length"), "2");
        EXPECT_EQ(event.body, "{");
        const Exchange clip = http.get("/media/clip.mp4");
        EXPECT_EQ(clip.result, CURLE_PARTIAL_FILE) << scheme;
        EXPECT_EQ(clip.headers.at("content-length"), "300000");
        EXPECT_EQ(clip.body.size(), 150'000U);
        setFault(http, R"({"path":"/other","cutBody":true,"status":200})");
        EXPECT_EQ(http.get("/nothing").result, CURLE_PARTIAL_FILE);
    }
    EXPECT_EQ(events(), eventNamed("a") + "\n" + eventNamed("a") + "\n") << "only the answers were cut";
}

TEST_F(Program, CutsEvenAnAnswerWithoutABody) {
    const auto server = start({"--fault", "cutBody,status=500"});
    auto http = client(*server);
    const Exchange exchange = http.get("/x");
    EXPECT_EQ(exchange.status, 500);
    EXPECT_EQ(exchange.result, CURLE_PARTIAL_FILE);
}

TEST_F(Program, NeverAnswersWhenItHangsAndKeepsTheConnection) {
    const auto server = start({"--fault", "path=/v1/event,hang"});
    auto http = client(*server);
    auto observer = client(*server);
    // Both are connected by now, so only the service takes time from here.
    EXPECT_EQ(http.get("/control/faults").status, 200);
    EXPECT_EQ(observer.get("/control/faults").status, 200);
    http.setTimeout(1000);
    std::thread waiting(
        [&http] { EXPECT_EQ(http.post("/v1/event", eventNamed("a")).result, CURLE_OPERATION_TIMEDOUT); });
    EXPECT_TRUE(server->waitForLine("fault  POST /v1/event  hang"));
    EXPECT_EQ(statistics(observer).at("connections").at("open"), 2);
    waiting.join();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{20};
    while (statistics(observer).at("connections").at("open") != 1 &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_EQ(statistics(observer).at("connections").at("open"), 1) << "it ends when the client gives up";
}

TEST_F(Program, AnswersLateAndServesOthersMeanwhile) {
    const auto server = start({"--fault", "path=/v1/event,count=1,delay=1000"});
    auto late = client(*server);
    auto other = client(*server);
    std::atomic<bool> answered = false;
    const auto begin = std::chrono::steady_clock::now();
    std::thread waiting([&late, &answered] {
        EXPECT_EQ(late.post("/v1/event", eventNamed("late")).status, 200);
        answered = true;
    });
    EXPECT_TRUE(server->waitForLine("delay 1000 ms"));
    EXPECT_EQ(other.post("/v1/event", eventNamed("other")).status, 200);
    EXPECT_FALSE(answered) << "the other one came first";
    waiting.join();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds{1000});
}

// --- what no client should do

TEST_F(Program, AnswersInvalidHttpWith400) {
    const auto server = start({"--http"});
    EXPECT_THAT(speakRaw(server->port(), "hello, is anybody there?\r\n\r\n"), StartsWith("HTTP/1.1 400"));
    EXPECT_THAT(speakRaw(server->port(), "POST /v1/event HTTP/1.1\r\nContent-Length: -1\r\n\r\n"),
                StartsWith("HTTP/1.1 400"));
    EXPECT_THAT(
        speakRaw(server->port(), "POST /v1/event HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n"),
        StartsWith("HTTP/1.1 400"));
    EXPECT_THAT(speakRaw(server->port(), "GET / HTTP/1.1\r\nX: " + std::string(100'000, 'x')),
                StartsWith("HTTP/1.1 431"));
}

class JunkSentTo : public Program, public testing::WithParamInterface<const char*> {};

TEST_P(JunkSentTo, AffectsOnlyItsOwnConnections) {
    const auto server = start({GetParam(), "--quiet"});
    const std::string request =
        "POST /v1/event HTTP/1.1\r\nHost: x\r\nContent-Length: 1000\r\n\r\n{\"name\":";
    const std::string clientHello("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", 11);
    std::minstd_rand random(42);  // NOLINT(cert-msc32-c, cert-msc51-cpp): reproducible
    for (int round = 0; round < 150; ++round) {
        std::string junk;
        if (round % 3 == 0) {
            junk = request.substr(0, random() % request.size());
        } else if (round % 3 == 1) {
            junk = clientHello.substr(0, random() % clientHello.size());
        }
        std::generate_n(std::back_inserter(junk), random() % 2000,
                        [&random] { return static_cast<char>(random()); });
        const bool abrupt = round % 2 == 0;
        static_cast<void>(
            speakRaw(server->port(), junk, abrupt ? Afterwards::hangsUp : Afterwards::stopsSending));
    }
    auto http = client(*server);
    EXPECT_EQ(http.post("/v1/event", eventNamed("still here")).status, 200);
    EXPECT_EQ(events(), eventNamed("still here") + "\n");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{20};
    while (statistics(http).at("connections").at("open") != 1 &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    const auto counts = statistics(http);
    EXPECT_EQ(counts.at("connections").at("open"), 1) << "no connection is left behind";
    EXPECT_EQ(counts.at("connections").at("accepted"), 151);
    EXPECT_EQ(server->end(SIGTERM).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Scheme, JunkSentTo, testing::Values("--http", "--quiet"), [](const auto& parameter) {
    return parameter.param == std::string("--http") ? "Http" : "Https";
});

TEST_F(Program, ExitsWhileRequestsArePending) {
    const auto server = start({"--fault", "path=/v1/event,hang", "--fault", "path=/v1/config,delay=60000"});
    auto hanging = client(*server);
    auto late = client(*server);
    std::thread first([&hanging] { EXPECT_NE(hanging.post("/v1/event", eventNamed("a")).result, CURLE_OK); });
    EXPECT_TRUE(server->waitForLine("hang"));
    std::thread second(
        [&late] { EXPECT_NE(late.post("/v1/config", R"({"deviceData":{}})").result, CURLE_OK); });
    EXPECT_TRUE(server->waitForLine("delay"));
    EXPECT_EQ(server->end(SIGTERM).status, 0);
    first.join();
    second.join();
}

// --- load

TEST_F(Program, RecordsEveryEventOfManyClientsIntact) {
    constexpr int clients = 8;
    constexpr int eventsEach = 400;
    const auto server = start({"--quiet"});
    std::vector<std::thread> threads;
    threads.reserve(clients);
    for (int number = 0; number < clients; ++number) {
        threads.emplace_back([this, &server, number] {
            auto http = client(*server);
            for (int i = 0; i < eventsEach; ++i) {
                ASSERT_EQ(http.post("/v1/event", eventNamed(numbered(number, i))).status, 200);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    std::vector<std::string> expected;
    for (int number = 0; number < clients; ++number) {
        for (int i = 0; i < eventsEach; ++i) {
            expected.push_back(eventNamed(numbered(number, i)));
        }
    }
    std::vector<std::string> recorded;
    std::istringstream lines(events());
    for (std::string line; std::getline(lines, line);) {
        recorded.push_back(line);
    }
    std::sort(expected.begin(), expected.end());
    std::sort(recorded.begin(), recorded.end());
    EXPECT_TRUE(recorded == expected) << recorded.size() << " lines";
    auto http = client(*server);
    EXPECT_EQ(statistics(http).at("events").at("recorded"), clients * eventsEach);
}

}  // namespace
}  // namespace vorna::devserver
