// SPDX-License-Identifier: Apache-2.0
/// Hosts that fork after they have initialised the library.

#include <tests/support/CountingServer.h>
#include <tests/support/LocalService.h>
#include <tests/support/StartedProgram.h>
#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <map>
#include <string>
#include <string_view>

namespace vorna {
namespace {

using support::CountingServer;
using support::StartedProgram;
using testing::Each;
using testing::Pair;

constexpr int properExit = 7;

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int forkCount = 30;
#else
constexpr int forkCount = 200;
#endif

/// The number after that text in the program's output; -1 if it is not there.
int numberAfter(std::string_view text, const std::string& output) {
    const std::size_t at = output.find(text);
    return at == std::string::npos ? -1 : std::stoi(output.substr(at + text.size()));
}

TEST(ForkUnderLoad, LetsBothSidesRecordAndSendsNothingTwice) {
    const support::TemporaryFolder folder;
    const CountingServer server;
    const StartedProgram::End end = StartedProgram({VORNA_FORKING_HOST_PATH, server.url(), "", folder.path(),
                                                    "load", std::to_string(forkCount)})
                                        .end();
    EXPECT_EQ(end.status, properExit) << end.output << end.problem;
    EXPECT_EQ(end.problem, "");
    const int recorded = numberAfter("recorded ", end.output);
    const auto ofParent = server.valuesOf("parent");
    const auto ofChildren = server.valuesOf("child");
    std::cout << forkCount << " forks: " << ofParent.size() << " events of the parent, " << ofChildren.size()
              << " of children\n";
    EXPECT_EQ(ofParent.size(), static_cast<std::size_t>(recorded));
    EXPECT_THAT(ofParent, Each(Pair(testing::_, 1U)));
    // Each third child only exits.
    EXPECT_EQ(ofChildren.size(), static_cast<std::size_t>(forkCount - (forkCount + 2) / 3));
    EXPECT_THAT(ofChildren, Each(Pair(testing::_, 1U)));
    EXPECT_EQ(server.count("sdk_initialized"), 1U);
}

TEST(ForkUnderLoad, OverTlsSendsNothingTwice) {
    const support::LocalService service;
    const PlatformOptions options = service.options();
    constexpr int count = forkCount / 4;
    const StartedProgram::End end =
        StartedProgram({VORNA_FORKING_HOST_PATH, options.serviceURL, options.certificateAuthorityFile,
                        options.dataDirectory, "load", std::to_string(count)})
            .end();
    EXPECT_EQ(end.status, properExit) << end.output << end.problem;
    EXPECT_EQ(end.problem, "");
    const auto recorded = static_cast<std::size_t>(numberAfter("recorded ", end.output));
    constexpr std::size_t ofChildren = count - (count + 2) / 3;
    std::map<std::string, int> arrived;
    for (const std::string& document : service.waitForDocuments(recorded + ofChildren + 1)) {
        // Name and custom value.
        const std::size_t dates = document.find("\"createDate\"");
        const std::size_t value = document.find("\"customValue\"");
        ASSERT_NE(dates, std::string::npos);
        ASSERT_NE(value, std::string::npos);
        ++arrived[document.substr(0, dates) + document.substr(value, document.find(',', value) - value)];
    }
    EXPECT_EQ(arrived.size(), recorded + ofChildren + 1);
    EXPECT_THAT(arrived, Each(Pair(testing::_, 1)));
}

TEST(Fork, LetsADaemonGoOnRecording) {
    const support::TemporaryFolder folder;
    const CountingServer server;
    const StartedProgram::End end =
        StartedProgram({VORNA_FORKING_HOST_PATH, server.url(), "", folder.path(), "daemon"}).end();
    EXPECT_EQ(end.status, properExit) << end.output << end.problem;
    EXPECT_THAT(end.output, testing::HasSubstr("the daemon leaves"));
    EXPECT_EQ(end.problem, "");
    EXPECT_EQ(server.count("sdk_initialized"), 1U);
    EXPECT_EQ(server.count("before"), 1U);
    EXPECT_EQ(server.count("daemon"), 1U);
}

TEST(Fork, CostsAChildThatOnlyExitsNothing) {
    const support::TemporaryFolder folder;
    const CountingServer server;
    const auto median = [&](const char* way) {
        const StartedProgram::End end =
            StartedProgram({VORNA_FORKING_HOST_PATH, server.url(), "", folder.path(), way, "21"}).end();
        EXPECT_EQ(end.status, properExit) << end.output << end.problem;
        EXPECT_EQ(end.problem, "");
        return numberAfter("median ", end.output);
    };
    const int bare = median("bare");
    const int withLibrary = median("exits");
    std::cout << "a child that exits: " << withLibrary << " us, without the library " << bare << " us\n";
    EXPECT_LT(withLibrary, bare + 20'000);
}

}  // namespace
}  // namespace vorna
