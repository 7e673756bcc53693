// SPDX-License-Identifier: Apache-2.0
#include <tests/support/CountingServer.h>
#include <tests/support/StartedProgram.h>
#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

namespace vorna {
namespace {

TEST(RefusedThreads, AreStartedByTheNextOperationAndMissNothing) {
    const support::TemporaryFolder folder;
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    const support::CountingServer server;
    support::StartedProgram host({VORNA_REFUSED_HOST_PATH, server.url(), folder.path() / "data"});
    EXPECT_TRUE(host.waitForLine("all threads run").has_value());
    EXPECT_TRUE(server.waitFor({"refused", "sdk_initialized", "allowed"}));
    const support::StartedProgram::End end = host.end(SIGTERM);
    EXPECT_EQ(end.status, -SIGTERM) << end.problem;
    EXPECT_EQ(server.count("refused"), 1U);
    EXPECT_EQ(server.count("sdk_initialized"), 1U);
    EXPECT_EQ(server.count("allowed"), 1U);
}

}  // namespace
}  // namespace vorna
