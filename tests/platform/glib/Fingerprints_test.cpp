// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/glib/Fingerprints.h>

#include <tests/platform/glib/FakeSystemBus.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <future>
#include <ostream>
#include <stop_token>
#include <string>
#include <vector>

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
    EXPECT_EQ(isFingerEnrolled(bus.address(), {}), GetParam().isEnrolled);
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

TEST(FingerprintQuery, MakesOnlyTheNecessaryCallsForTheUserOfTheProcess) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::enrolled);
    isFingerEnrolled(bus.address(), {});
    EXPECT_EQ(service.calls(),
              (std::vector<std::string>{"GetDevices", "ListEnrolledFingers '' at /reader/0"}));
}

TEST(FingerprintQuery, IsFalseWithoutTheService) {
    const FakeSystemBus bus;
    EXPECT_FALSE(isFingerEnrolled(bus.address(), {}));
}

TEST(FingerprintQuery, IsFalseWithoutABus) {
    const support::TemporaryFolder folder;
    EXPECT_FALSE(isFingerEnrolled("unix:path=" + (folder.path() / "none").string(), {}));
}

TEST(FingerprintQuery, IsFalseForAnAddressThatNamesNoLocalBus) {
    for (const char* const address : {"", "nonsense", "unix:", "unix:path=", "tcp:host=127.0.0.1,port=1",
                                      "autolaunch:", "unixexec:path=/bin/false"}) {
        EXPECT_FALSE(isFingerEnrolled(address, {})) << address;
    }
}

TEST(FingerprintQuery, GivesUpOnAServiceThatDoesNotAnswer) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::hanging);
    EXPECT_FALSE(isFingerEnrolled(bus.address(), {}));
    EXPECT_EQ(service.calls(), (std::vector<std::string>{"GetDevices"}));
}

TEST(FingerprintQuery, GivesUpOnABusThatDoesNotAnswer) {
    const MuteSystemBus bus;
    EXPECT_FALSE(isFingerEnrolled(bus.address(), {}));
}

TEST(FingerprintQuery, CallsNothingOnceAStopIsRequested) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::enrolled);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(isFingerEnrolled(bus.address(), stop.get_token()));
    EXPECT_TRUE(service.calls().empty());
}

/// Long enough for a slow machine, short enough to tell a stopped query from one that gave up.
constexpr std::chrono::milliseconds wellBeforeItGivesUp{1500};

/// A query on a separate thread.
class RunningQuery {
  public:
    explicit RunningQuery(const std::string& busAddress)
        : isEnrolled_(std::async(std::launch::async, [busAddress, stop = stop_.get_token()] {
              return isFingerEnrolled(busAddress, stop);
          })) {}

    void requestStop() { stop_.request_stop(); }

    bool isEnrolled() { return isEnrolled_.get(); }

  private:
    std::stop_source stop_;
    std::future<bool> isEnrolled_;
};

TEST(FingerprintQuery, ReturnsImmediatelyWhenStoppedWhileTheServiceIsSilent) {
    const FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::hanging);
    RunningQuery query(bus.address());
    EXPECT_TRUE(service.waitForCall());
    const Clock::time_point stopped = Clock::now();
    query.requestStop();
    EXPECT_FALSE(query.isEnrolled());
    EXPECT_LT(Clock::now() - stopped, wellBeforeItGivesUp);
}

TEST(FingerprintQuery, ReturnsImmediatelyWhenStoppedWhileTheBusIsSilent) {
    const MuteSystemBus bus;
    RunningQuery query(bus.address());
    EXPECT_TRUE(bus.waitForClient());
    const Clock::time_point stopped = Clock::now();
    query.requestStop();
    EXPECT_FALSE(query.isEnrolled());
    EXPECT_LT(Clock::now() - stopped, wellBeforeItGivesUp);
}

TEST(FingerprintQuery, EndsWithoutTheProcessWhenTheBusDisappears) {
    FakeSystemBus bus;
    const FakeFingerprintService service(bus.address(), Fingers::hanging);
    RunningQuery query(bus.address());
    EXPECT_TRUE(service.waitForCall());
    bus.stop();
    EXPECT_FALSE(query.isEnrolled());
}

}  // namespace
}  // namespace vorna
