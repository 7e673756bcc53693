// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/Log.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vorna {
namespace {

TEST(Log, PrintsNothingWhileTheSwitchIsOff) {
    testing::internal::CaptureStdout();
    log::debug({"Event called  -> ", "x"});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Log, PrintsOneLineWithItsPrefixWhileTheSwitchIsOn) {
    log::enabled = true;
    testing::internal::CaptureStdout();
    log::debug({"Event called  -> ", "x"});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[VornaSDK] Event called  -> x\n");
}

TEST(Log, PrintsCriticalLinesWithoutPrefixEvenWhileTheSwitchIsOff) {
    testing::internal::CaptureStdout();
    log::always({"Error reading from Keychain: ", "-25300"});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error reading from Keychain: -25300\n");
}

TEST(Log, PrintsTheFailedOperationAndTheExceptionsMessage) {
    const auto printedOf = [](const auto& thrown) {
        testing::internal::CaptureStdout();
        try {
            throw thrown;
        } catch (...) {
            log::failure({"The ", "thing"});
        }
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(printedOf(std::runtime_error("why")), "") << "the switch is off";
    log::enabled = true;
    EXPECT_EQ(printedOf(std::runtime_error("why")), "[VornaSDK] The thing has failed: why\n");
    EXPECT_EQ(printedOf(42), "[VornaSDK] The thing has failed: an exception of unknown type\n");
}

TEST(Log, ShowsInvalidBytesAsReplacementCharacters) {
    log::enabled = true;
    testing::internal::CaptureStdout();
    log::debug({"a\xFF", "z"});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[VornaSDK] a\uFFFDz\n");
}

TEST(Log, NeverMixesLinesOfDifferentThreads) {
    log::enabled = true;
    testing::internal::CaptureStdout();
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        threads.emplace_back([line = std::string(200, letter)] {
            for (int count = 0; count < 100; ++count) {
                log::debug({line.substr(0, 100), line.substr(100)});
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::string text = testing::internal::GetCapturedStdout();
    const std::size_t lineLength = std::string("[VornaSDK] ").size() + 201;
    ASSERT_EQ(text.size(), 400 * lineLength);
    for (std::size_t at = 0; at < text.size(); at += lineLength) {
        const std::string line = text.substr(at, lineLength);
        EXPECT_EQ(line, "[VornaSDK] " + std::string(200, line[11]) + "\n");
    }
}

}  // namespace
}  // namespace vorna
