// SPDX-License-Identifier: Apache-2.0
#include <vorna/base/CatchAll.h>

#include <tests/support/HostThread.h>

#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <string>

namespace vorna {
namespace {

TEST(CatchAll, ReturnsTheOperationsResult) {
    EXPECT_EQ(catchAll([] { return 7; }, [] { return 0; }), 7);
}

TEST(CatchAll, ReturnsTheHandlersResultWhateverIsThrown) {
    EXPECT_EQ(catchAll([]() -> int { throw std::runtime_error("x"); }, [] { return 1; }), 1);
    EXPECT_EQ(catchAll([]() -> int { throw 5; }, [] { return 2; }), 2);
}

TEST(CatchAll, LetsTheHandlerSeeTheException) {
    const auto message = [] {
        try {
            throw;
        } catch (const std::exception& problem) {
            return std::string(problem.what());
        }
    };
    EXPECT_EQ(catchAll([]() -> std::string { throw std::runtime_error("why"); }, message), "why");
}

TEST(CatchAll, LetsAThreadEnd) {
    bool isHandled = false;
    support::HostThread thread(
        [&] { catchAll([] { support::HostThread::endHere(); }, [&] { isHandled = true; }); });
    thread.join();
    EXPECT_TRUE(thread.endedItself());
    EXPECT_FALSE(isHandled);
}

}  // namespace
}  // namespace vorna
