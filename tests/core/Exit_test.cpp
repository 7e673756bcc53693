// SPDX-License-Identifier: Apache-2.0
#include <tests/support/CountingServer.h>
#include <tests/support/LocalService.h>
#include <tests/support/StartedProgram.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using support::CountingServer;
using support::LocalService;
using support::StartedProgram;

// Sanitizers make starting a program ten times slower.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int runCount = 40;
constexpr int sessionCount = 20;
constexpr int slack = 500;
#else
constexpr int runCount = 200;
constexpr int sessionCount = 100;
constexpr int slack = 50;
#endif

/// Exit status of a host that exits in that way, or the negative number of the signal that killed it.
int statusOf(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{VORNA_LEAVING_HOST_PATH};
    words.insert(words.end(), arguments.begin(), arguments.end());
    // A host that hangs is killed, which its status shows.
    const StartedProgram::End end = StartedProgram(std::move(words)).end();
    std::cerr << end.output << end.problem;
    return end.status;
}

struct ServiceKind {
    const char* name;
    std::vector<std::string> faults;
    const char* url;
};

class ExitUnderLoad : public testing::TestWithParam<ServiceKind> {};

TEST_P(ExitUnderLoad, IsCleanInEveryWayAndAtAnyTime) {
    const LocalService service(GetParam().faults);
    const PlatformOptions options = service.options();
    const std::string url = *GetParam().url == '\0' ? options.serviceURL : GetParam().url;
    constexpr std::array ways = {
        "return", "exit", "exit-while-recording", "exit-from-a-thread", "exit-from-an-observer", "resign"};
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int run = 0; run < runCount / 4; ++run) {
        const std::string way = ways[static_cast<std::size_t>(run) % ways.size()];
        const std::string events = std::to_string(std::array{10, 500, 5000}[random() % 3]);
        const std::string microseconds = std::to_string(random() % 40'000);
        ASSERT_EQ(statusOf({url, options.certificateAuthorityFile, options.dataDirectory, way, events,
                            microseconds}),
                  7)
            << "run " << run << ": " << way << " after " << events << " events and " << microseconds << " us";
    }
}

INSTANTIATE_TEST_SUITE_P(Services, ExitUnderLoad,
                         testing::Values(ServiceKind{"Answering", {}, ""},
                                         ServiceKind{"Hanging", {"--fault", "hang"}, ""},
                                         ServiceKind{"Unreachable", {}, "https://127.0.0.1:1"},
                                         ServiceKind{"Unresolvable", {}, "https://service.vorna.invalid"}),
                         [](const auto& testCase) { return testCase.param.name; });

/// Leaves as a desktop application does: it resigns activity and returns from `main`. Returns the time that
/// took, in milliseconds.
int leave(const PlatformOptions& options, int microsecondsBefore, int grace) {
    const StartedProgram::End end =
        StartedProgram({VORNA_LEAVING_HOST_PATH, options.serviceURL, options.certificateAuthorityFile,
                        options.dataDirectory, "resign", "2", std::to_string(microsecondsBefore),
                        std::to_string(grace)})
            .end();
    EXPECT_EQ(end.status, 7) << end.output << end.problem;
    constexpr std::string_view line = "left after ";
    const std::size_t at = end.output.find(line);
    return at == std::string::npos ? -1 : std::stoi(end.output.substr(at + line.size()));
}

constexpr int withoutConnection = 0;
/// Long enough for the worker and a first answer.
constexpr int withOpenConnection = 50'000;
/// So long that leaving only takes less if it ends with the last answer.
constexpr int generousGrace = 30'000;
constexpr int shortLeave = 15'000;

class SessionAtExit : public testing::TestWithParam<int> {};

TEST_P(SessionAtExit, ArrivesEveryTime) {
    const support::TemporaryFolder folder;
    const CountingServer server;
    PlatformOptions options;
    options.serviceURL = server.url();
    options.dataDirectory = folder.path();
    for (int run = 0; run < sessionCount; ++run) {
        const int time = leave(options, GetParam(), generousGrace);
        EXPECT_GE(time, 0);
        EXPECT_LT(time, shortLeave) << "the grace did not end with the last answer";
    }
    EXPECT_EQ(server.count("vorna_session"), static_cast<std::size_t>(sessionCount));
}

TEST_P(SessionAtExit, ArrivesEveryTimeOverTls) {
    const LocalService service;
    constexpr int runs = sessionCount / 4;
    for (int run = 0; run < runs; ++run) {
        EXPECT_LT(leave(service.options(), GetParam(), generousGrace), shortLeave);
    }
    const std::vector<std::string> documents = service.waitForDocuments(runs);
    EXPECT_EQ(std::ranges::count_if(documents,
                                    [](const std::string& document) {
                                        return document.find("\"vorna_session\"") != std::string::npos;
                                    }),
              runs);
}

INSTANTIATE_TEST_SUITE_P(Connections, SessionAtExit, testing::Values(withoutConnection, withOpenConnection),
                         [](const auto& testCase) {
                             return testCase.param == withoutConnection ? "NotYetOpen" : "Open";
                         });

/// The shortest of several leaves from a service that does not answer, since a busy machine only prolongs
/// them.
int shortestLeaveFromASilentService(int grace) {
    const support::TemporaryFolder folder;
    const CountingServer server(CountingServer::Answers::never);
    PlatformOptions options;
    options.serviceURL = server.url();
    options.dataDirectory = folder.path();
    int shortest = std::numeric_limits<int>::max();
    for (int run = 0; run < 10; ++run) {
        shortest = std::min(shortest, leave(options, withOpenConnection, grace));
    }
    return shortest;
}

TEST(SilentServiceAtExit, DelaysItByTheGraceAndNoLonger) {
    constexpr int grace = 250;
    const int time = shortestLeaveFromASilentService(grace);
    std::cout << "left a silent service in " << time << " ms\n";
    EXPECT_GE(time, grace);
    EXPECT_LE(time, grace + slack);
}

TEST(SilentServiceAtExit, DoesNotDelayItWithoutAGrace) {
    EXPECT_LE(shortestLeaveFromASilentService(0), slack);
}

}  // namespace
}  // namespace vorna
