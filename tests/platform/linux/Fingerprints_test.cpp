// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/Fingerprints.h>

#include <tests/platform/linux/FakeSystemBus.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <ostream>
#include <thread>

namespace vorna {
namespace {

using tests::FakeFingerprintService;
using tests::FakeSystemBus;
using tests::Fingers;
using tests::MuteSystemBus;
using Clock = std::chrono::steady_clock;

struct Row {
    const char* name;
    Fingers fingers;
    bool isEnrolled;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

class FingerprintService : public testing::TestWithParam<Row> {};

TEST_P(FingerprintService, DecidesWhetherAFingerIsEnrolled) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), GetParam().fingers);
    EXPECT_EQ(FingerprintQuery(bus.address()).isFingerEnrolled(), GetParam().isEnrolled);
    EXPECT_FALSE(service.calls().empty());
}

const auto rows = std::to_array<Row>({
    {"Enrolled", Fingers::enrolled, true},
    {"EnrolledAtTheSecondReader", Fingers::enrolledAtSecondReader, true},
    {"NoFinger", Fingers::none, false},
    {"EmptyList", Fingers::emptyList, false},
    {"NoReader", Fingers::noReader, false},
    {"Denied", Fingers::denied, false},
    {"AnswerOfAnotherType", Fingers::nonsense, false},
});

INSTANTIATE_TEST_SUITE_P(That, FingerprintService, testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FingerprintQuery, AsksForTheUserWhoRunsTheProcessAndNoMoreThanItNeeds) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::enrolled);
    FingerprintQuery(bus.address()).isFingerEnrolled();
    EXPECT_EQ(service.calls(),
              (std::vector<std::string>{"GetDevices", "ListEnrolledFingers '' at /reader/0"}));
}

TEST(FingerprintQuery, IsFalseWithoutTheService) {
    const FakeSystemBus bus;
    EXPECT_FALSE(FingerprintQuery(bus.address()).isFingerEnrolled());
}

TEST(FingerprintQuery, LeavesTheHostsHandlingOfBrokenPipesAsItWas) {
    const FakeSystemBus bus;
    ASSERT_NE(std::signal(SIGPIPE, SIG_DFL), SIG_ERR);
    FingerprintQuery(bus.address()).isFingerEnrolled();
    struct sigaction handling = {};
    ASSERT_EQ(sigaction(SIGPIPE, nullptr, &handling), 0);
    EXPECT_EQ(handling.sa_handler, SIG_DFL);
}

TEST(FingerprintQuery, IsFalseWithoutABus) {
    const support::TemporaryFolder folder;
    EXPECT_FALSE(FingerprintQuery("unix:path=" + (folder.path() / "none").string()).isFingerEnrolled());
}

TEST(FingerprintQuery, IsFalseForAnAddressThatNamesNoLocalBus) {
    for (const char* const address : {"", "nonsense", "unix:", "unix:path=", "tcp:host=127.0.0.1,port=1",
                                      "autolaunch:", "unixexec:path=/bin/false"}) {
        EXPECT_FALSE(FingerprintQuery(address).isFingerEnrolled()) << address;
    }
}

TEST(FingerprintQuery, GivesUpOnAServiceThatDoesNotAnswer) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::hanging);
    EXPECT_FALSE(FingerprintQuery(bus.address()).isFingerEnrolled());
    EXPECT_EQ(service.calls(), (std::vector<std::string>{"GetDevices"}));
}

TEST(FingerprintQuery, GivesUpOnABusThatDoesNotAnswer) {
    const MuteSystemBus bus;
    EXPECT_FALSE(FingerprintQuery(bus.address()).isFingerEnrolled());
}

TEST(FingerprintQuery, ThatWasCancelledAsksNobody) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::enrolled);
    FingerprintQuery query(bus.address());
    query.cancel();
    EXPECT_FALSE(query.isFingerEnrolled());
    EXPECT_TRUE(service.calls().empty());
}

/// Long enough for a slow machine, short enough to tell a cancelled question from one that gave up.
constexpr std::chrono::milliseconds wellBeforeItGivesUp{1500};

TEST(FingerprintQuery, ReturnsAtOnceWhenCancelledWhileTheServiceIsSilent) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::hanging);
    FingerprintQuery query(bus.address());
    bool isEnrolled = true;
    std::thread asking([&] { isEnrolled = query.isFingerEnrolled(); });
    const bool isAsked = service.waitForCall();
    const Clock::time_point cancelled = Clock::now();
    query.cancel();
    asking.join();
    EXPECT_TRUE(isAsked);
    EXPECT_FALSE(isEnrolled);
    EXPECT_LT(Clock::now() - cancelled, wellBeforeItGivesUp);
}

TEST(FingerprintQuery, ReturnsAtOnceWhenCancelledWhileTheBusIsSilent) {
    const MuteSystemBus bus;
    FingerprintQuery query(bus.address());
    bool isEnrolled = true;
    std::thread asking([&] { isEnrolled = query.isFingerEnrolled(); });
    const bool isAsked = bus.waitForGuest();
    const Clock::time_point cancelled = Clock::now();
    query.cancel();
    asking.join();
    EXPECT_TRUE(isAsked);
    EXPECT_FALSE(isEnrolled);
    EXPECT_LT(Clock::now() - cancelled, wellBeforeItGivesUp);
}

TEST(FingerprintQuery, ABusThatGoesAwayEndsTheQuestionButNotTheProcess) {
    FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::hanging);
    FingerprintQuery query(bus.address());
    bool isEnrolled = true;
    std::thread asking([&] { isEnrolled = query.isFingerEnrolled(); });
    const bool isAsked = service.waitForCall();
    bus.stop();
    asking.join();
    EXPECT_TRUE(isAsked);
    EXPECT_FALSE(isEnrolled);
}

}  // namespace
}  // namespace vorna
