// SPDX-License-Identifier: Apache-2.0
#include <tools/devserver/Router.h>

#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>

#include <memory>
#include <vector>

namespace vorna::devserver {
namespace {

using support::contentsOf;
using support::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string event = R"({"name":"a\nb","createDate":1,"endDate":2,"customValue":"v","deviceData":{}})";

// A router with real files, and what it printed.
class RouterOfTheService : public testing::Test {
  protected:
    RouterOfTheService() {
        folder_.write("media/clip.mp4", "0123456789");
        Console console;
        console.request = [this](std::string_view line) { lines_.emplace_back(line); };
        console.trouble = [this](std::string_view line) { troubles_.emplace_back(line); };
        journal_ = std::make_unique<EventJournal>(folder_.path() / "events.ndjson");
        config_ = std::make_unique<ConfigFile>(folder_.path() / "config.json");
        router_ = std::make_unique<Router>(*journal_, *config_, MediaFolder(folder_.path() / "media"),
                                           faults_, statistics_, console,
                                           OwnAddress({"phone.test", "192.0.2.7", "2001:db8::7"}));
    }

    Outcome outcome(std::string_view method, std::string_view target, std::string_view body = {}) {
        Request request;
        request.method = method;
        request.target = target;
        request.body = body;
        request.host = "127.0.0.1:8443";
        return router_->handle(request);
    }

    Answer answer(std::string_view method, std::string_view target, std::string_view body = {}) {
        return std::get<Answer>(outcome(method, target, body).action);
    }

    Answer ranged(std::string_view method, std::string_view range, bool conditional = false) {
        Request request;
        request.method = method;
        request.target = "/media/clip.mp4";
        request.range = range;
        request.conditionalRange = conditional;
        return std::get<Answer>(router_->handle(request).action);
    }

    static std::string bodyOf(const Answer& answer) { return std::get<std::string>(answer.body); }

    static std::string header(const Answer& answer, std::string_view name) {
        for (const auto& [key, value] : answer.headers) {
            if (key == name) {
                return value;
            }
        }
        return "(none)";
    }

    void fault(std::string_view written) {
        EXPECT_EQ(answer("POST", "/control/faults", written).status, 200U) << written;
    }

    [[nodiscard]] std::string recorded() const { return contentsOf(journal_->path()); }

    [[nodiscard]] std::string statistics() const { return statistics_.toJson(); }

    TemporaryFolder folder_;
    std::vector<std::string> lines_;
    std::vector<std::string> troubles_;

    Router& router() { return *router_; }

  private:
    Statistics statistics_;
    Faults faults_;
    std::unique_ptr<EventJournal> journal_;
    std::unique_ptr<ConfigFile> config_;
    std::unique_ptr<Router> router_;
};

TEST_F(RouterOfTheService, RecordsAnEventAndPrintsIt) {
    const Answer reply = answer("POST", "/v1/event", event);
    EXPECT_EQ(reply.status, 200U);
    EXPECT_EQ(bodyOf(reply), "{}");
    EXPECT_EQ(header(reply, "Content-Type"), "application/json");
    EXPECT_EQ(recorded(), event + "\n");
    EXPECT_THAT(lines_, ElementsAre("event  a\\nb  v  1..2"));
}

TEST_F(RouterOfTheService, RejectsAnInvalidEventWithAReason) {
    const Answer reply = answer("POST", "/v1/event", "{}");
    EXPECT_EQ(reply.status, 400U);
    EXPECT_THAT(bodyOf(reply), HasSubstr(R"({"error":"missing key \"name\")"));
    EXPECT_EQ(recorded(), "");
    EXPECT_THAT(lines_, ElementsAre(HasSubstr("rejected  /v1/event  missing key \"name\"")));
    EXPECT_THAT(statistics(), HasSubstr(R"("events":{"recorded":0,"rejected":1})"));
}

TEST_F(RouterOfTheService, AnswersAnEventThatCannotBeWrittenWith500) {
    std::filesystem::remove(folder_.path() / "events.ndjson");
    std::filesystem::create_directory(folder_.path() / "events.ndjson");
    EXPECT_EQ(answer("POST", "/v1/event", event).status, 500U);
    EXPECT_THAT(troubles_, ElementsAre(HasSubstr("events.ndjson")));
    EXPECT_THAT(statistics(), HasSubstr(R"("events":{"recorded":0,)"));
}

TEST_F(RouterOfTheService, ServesTheCurrentConfiguration) {
    EXPECT_EQ(bodyOf(answer("POST", "/v1/config", R"({"deviceData":{}})")), R"({"configs":{}})");
    folder_.write("config.json", R"({"a":"1","b":2.50})");
    EXPECT_EQ(bodyOf(answer("POST", "/v1/config", R"({"deviceData":{}})")),
              R"({"configs":{"a":"1","b":2.50}})");
    EXPECT_EQ(answer("POST", "/v1/config", R"({"device":{}})").status, 400U);
}

TEST_F(RouterOfTheService, AnswersWith500WhileTheConfigurationIsBroken) {
    folder_.write("config.json", "{");
    EXPECT_EQ(answer("POST", "/v1/config", R"({"deviceData":{}})").status, 500U);
    EXPECT_THAT(troubles_, ElementsAre(HasSubstr("config.json: not JSON")));
    folder_.write("config.json", "{}");
    EXPECT_EQ(answer("POST", "/v1/config", R"({"deviceData":{}})").status, 200U);
}

TEST_F(RouterOfTheService, ServesMediaWholeOrInPart) {
    const Answer whole = answer("GET", "/media/clip.mp4?version=2");
    EXPECT_EQ(whole.status, 200U);
    EXPECT_EQ(header(whole, "Content-Type"), "video/mp4");
    EXPECT_EQ(header(whole, "Accept-Ranges"), "bytes");
    EXPECT_EQ(std::get<FileSlice>(whole.body).range, (ByteRange{0, 10}));

    const Answer part = ranged("GET", "bytes=2-4");
    EXPECT_EQ(part.status, 206U);
    EXPECT_EQ(header(part, "Content-Range"), "bytes 2-4/10");
    EXPECT_EQ(std::get<FileSlice>(part.body).range, (ByteRange{2, 3}));

    const Answer beyond = ranged("GET", "bytes=10-");
    EXPECT_EQ(beyond.status, 416U);
    EXPECT_EQ(header(beyond, "Content-Range"), "bytes */10");

    EXPECT_EQ(ranged("HEAD", "bytes=2-4").status, 200U) << "a range is for GET alone";
    EXPECT_EQ(ranged("GET", "bytes=2-4", true).status, 200U) << "no condition can hold";
    EXPECT_EQ(answer("GET", "/media/../events.ndjson").status, 404U);
}

TEST_F(RouterOfTheService, NamesTheMethodsOfAPath) {
    struct Row {
        const char* method;
        const char* target;
        const char* allowed;
    };

    const std::vector<Row> cases = {
        {"GET", "/v1/event", "POST"},
        {"PUT", "/v1/config", "POST"},
        {"POST", "/media/clip.mp4", "GET, HEAD"},
        {"PUT", "/control/faults", "GET, POST, DELETE"},
        {"POST", "/control/statistics", "GET"},
        {"GET", "/control/shutdown", "POST"},
    };

    for (const auto& one : cases) {
        const Answer reply = answer(one.method, one.target);
        EXPECT_EQ(reply.status, 405U) << one.target;
        EXPECT_EQ(header(reply, "Allow"), one.allowed);
    }
}

TEST_F(RouterOfTheService, AnswersOtherPathsWith404) {
    for (const char* target :
         {"/", "/v1", "/v1/events", "/v1/event/", "/media", "/control/other", "*", "", "/%00"}) {
        EXPECT_EQ(answer("GET", target).status, 404U) << target;
    }
}

TEST_F(RouterOfTheService, AcceptsATargetWithQueryOrAuthority) {
    EXPECT_EQ(answer("POST", "/v1/event?x=1", event).status, 200U);
    EXPECT_EQ(answer("POST", "http://localhost:1/v1/event", event).status, 200U);
    EXPECT_EQ(answer("POST", "https://localhost", event).status, 404U);
}

TEST_F(RouterOfTheService, LetsAFaultAnswerWithoutHandlingTheRequest) {
    fault(
        R"({"path":"/v1/event","count":1,"status":301,"location":"https://other.example/","body":"moved"})");
    const Answer reply = answer("POST", "/v1/event", event);
    EXPECT_EQ(reply.status, 301U);
    EXPECT_EQ(header(reply, "Location"), "https://other.example/");
    EXPECT_EQ(bodyOf(reply), "moved");
    EXPECT_EQ(recorded(), "");
    EXPECT_THAT(lines_, ElementsAre("fault  POST /v1/event  status 301"));
    EXPECT_EQ(answer("POST", "/v1/event", event).status, 200U);
}

TEST_F(RouterOfTheService, RecordsAnEventWhoseAnswerIsDelayedOrCut) {
    fault(R"({"cutBody":true,"delayMilliseconds":250})");
    const Outcome late = outcome("POST", "/v1/event", event);
    EXPECT_EQ(late.delay, std::chrono::milliseconds(250));
    EXPECT_TRUE(late.cutBody);
    EXPECT_EQ(std::get<Answer>(late.action).status, 200U);
    EXPECT_EQ(recorded(), event + "\n");
}

TEST_F(RouterOfTheService, LeavesRequestsUnansweredOnDemand) {
    fault(R"({"count":1,"drop":true})");
    fault(R"({"count":1,"reset":true})");
    fault(R"({"count":1,"hang":true})");
    EXPECT_TRUE(std::holds_alternative<DropConnection>(outcome("POST", "/v1/event", event).action));
    EXPECT_TRUE(std::holds_alternative<ResetConnection>(outcome("POST", "/v1/event", event).action));
    EXPECT_TRUE(std::holds_alternative<HoldConnection>(outcome("POST", "/v1/event", event).action));
    EXPECT_TRUE(std::holds_alternative<Answer>(outcome("POST", "/v1/event", event).action));
    EXPECT_THAT(statistics(), HasSubstr(R"("total":4,"unanswered":3)"));
    EXPECT_THAT(statistics(), HasSubstr(R"("recorded":1)"));
}

TEST_F(RouterOfTheService, ListsAndClearsFaults) {
    fault(R"({"drop":true})");
    EXPECT_EQ(bodyOf(answer("GET", "/control/faults")), R"({"faults":[{"drop":true}]})");
    EXPECT_EQ(bodyOf(answer("DELETE", "/control/faults")), R"({"faults":[]})");
    EXPECT_EQ(bodyOf(answer("GET", "/control/faults")), R"({"faults":[]})");
    const Answer wrong = answer("POST", "/control/faults", R"({"status":1})");
    EXPECT_EQ(wrong.status, 400U);
    EXPECT_THAT(bodyOf(wrong), HasSubstr("status: from 200 to 999"));
}

TEST_F(RouterOfTheService, IsControlledFromTheSameMachineOnly) {
    Request request;
    request.method = "POST";
    request.target = "/control/shutdown";
    request.host = "127.0.0.1:8443";
    request.fromLoopback = false;
    const Outcome refused = router().handle(request);
    EXPECT_EQ(std::get<Answer>(refused.action).status, 403U);
    EXPECT_FALSE(refused.stopServer);
    request.fromLoopback = true;
    EXPECT_TRUE(router().handle(request).stopServer);
}

// Whether a request with these headers may control the server.
struct Visit {
    const char* host;
    const char* origin;
    bool isAccepted;
    const char* target = "/control/shutdown";
};

TEST_F(RouterOfTheService, IsControlledUnderItsOwnAddressAndNotByAnotherOrigin) {
    for (const Visit& visit : {
             Visit{"127.0.0.1:8443", nullptr, true},
             Visit{"127.9.9.9:1", nullptr, true},
             Visit{"localhost", nullptr, true},
             Visit{"LocalHost:8443", nullptr, true},
             Visit{"[::1]:8443", nullptr, true},
             Visit{"[0:0:0:0:0:0:0:1]", nullptr, true},
             Visit{"phone.test:8443", nullptr, true},
             Visit{"192.0.2.7:8443", nullptr, true},
             Visit{"[2001:db8::7]:8443", nullptr, true},
             // A name that its owner has made point to this machine.
             Visit{"evil.test:8443", nullptr, false},
             Visit{"127.0.0.1.evil.test:8443", nullptr, false},
             Visit{"localhost.evil.test", nullptr, false},
             Visit{"192.0.2.8:8443", nullptr, false},
             Visit{"127.0.0.1@evil.test", nullptr, false},
             Visit{"evil.test#localhost", nullptr, false},
             Visit{"localhost:evil.test", nullptr, false},
             Visit{"[::1", nullptr, false},
             Visit{"[::1]evil.test", nullptr, false},
             Visit{"", nullptr, false},
             Visit{"localhost", nullptr, false, "http://evil.test/control/shutdown"},
             Visit{"evil.test", nullptr, false, "http://localhost/control/shutdown"},
             Visit{"localhost", nullptr, true, "http://localhost/control/shutdown"},
             // A page from elsewhere that sends a request to us.
             Visit{"127.0.0.1:8443", "https://127.0.0.1:8443", true},
             Visit{"127.0.0.1:8443", "http://127.0.0.1:8443", true},
             Visit{"127.0.0.1:8443", "https://evil.test", false},
             Visit{"127.0.0.1:8443", "https://127.0.0.1:3000", false},
             Visit{"127.0.0.1:8443", "https://localhost:8443", false},
             Visit{"127.0.0.1:8443", "null", false},
             Visit{"127.0.0.1:8443", "", false},
             Visit{"127.0.0.1:8443", "127.0.0.1:8443", false},
             Visit{"evil.test:8443", "https://evil.test:8443", false},
         }) {
        Request request;
        request.method = "POST";
        request.target = visit.target;
        request.host = visit.host;
        if (visit.origin != nullptr) {
            request.origin = visit.origin;
        }
        const Outcome outcome = router().handle(request);
        const std::string described =
            std::string(visit.host) + " from " + (visit.origin == nullptr ? "nowhere" : visit.origin);
        EXPECT_EQ(std::get<Answer>(outcome.action).status, visit.isAccepted ? 200U : 403U) << described;
        EXPECT_EQ(outcome.stopServer, visit.isAccepted) << described;
    }
}

TEST_F(RouterOfTheService, ServesTheServiceUnderAnyNameToAnyOrigin) {
    Request request;
    request.method = "POST";
    request.target = "/v1/event";
    request.body = event;
    request.host = "events.example.com";
    request.origin = "https://app.example.com";
    EXPECT_EQ(std::get<Answer>(router().handle(request).action).status, 200U);
}

TEST_F(RouterOfTheService, CountsRequestsButNotThoseToControl) {
    static_cast<void>(answer("POST", "/v1/event", event));
    static_cast<void>(answer("GET", "/control/faults"));
    static_cast<void>(answer("GET", "/nothing"));
    EXPECT_THAT(
        bodyOf(answer("GET", "/control/statistics")),
        HasSubstr(
            R"("requests":{"total":2,"unanswered":0,"paths":{"/nothing":1,"/v1/event":1}},"statuses":{"200":1,"404":1})"));
    EXPECT_THAT(troubles_, IsEmpty());
}

}  // namespace
}  // namespace vorna::devserver
