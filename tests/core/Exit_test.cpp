// SPDX-License-Identifier: Apache-2.0
#include <tests/support/LocalService.h>
#include <tests/support/StartedProgram.h>

#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace vorna {
namespace {

using support::LocalService;
using support::StartedProgram;

// Sanitizers make starting a program ten times slower.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int runCount = 40;
#else
constexpr int runCount = 200;
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
    constexpr std::array ways = {"return", "exit", "exit-while-recording", "exit-from-a-thread",
                                 "exit-from-an-observer"};
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

}  // namespace
}  // namespace vorna
