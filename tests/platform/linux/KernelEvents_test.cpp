// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/KernelEvents.h>

#include <gtest/gtest.h>

#include <string>

namespace vorna {
namespace {

using namespace std::string_view_literals;

TEST(KernelAnnouncement, OfAPowerSupplyIsKnownByItsSubsystem) {
    EXPECT_TRUE(concernsPowerSupply(
        "change@/devices/LNXSYSTM:00/PNP0C0A:00/power_supply/BAT1\0"
        "ACTION=change\0SUBSYSTEM=power_supply\0POWER_SUPPLY_NAME=BAT1\0SEQNUM=5064\0"sv));
    EXPECT_TRUE(concernsPowerSupply("add@/x\0SUBSYSTEM=power_supply"sv));
}

TEST(KernelAnnouncement, OfAnythingElseIsPassedOver) {
    EXPECT_FALSE(concernsPowerSupply("change@/devices/card1\0ACTION=change\0SUBSYSTEM=drm\0HOTPLUG=1\0"sv));
    EXPECT_FALSE(concernsPowerSupply("add@/devices/virtual/misc/power_supply\0SUBSYSTEM=misc\0"sv));
    EXPECT_FALSE(concernsPowerSupply("add@/x\0SUBSYSTEM=power_supply2\0XSUBSYSTEM=power_supply\0"sv));
    EXPECT_FALSE(concernsPowerSupply(""sv));
    EXPECT_FALSE(concernsPowerSupply("\0\0\0"sv));
}

TEST(KernelEvents, ThatDoNotListenHaveNothingToTell) {
    KernelEvents events;
    EXPECT_LT(events.descriptor(), 0);
    EXPECT_FALSE(events.takePowerSupplyChange());
}

TEST(KernelEvents, NothingArrivedIsNoChangeAndNotWaitedFor) {
    KernelEvents events;
    events.open();
    if (events.descriptor() < 0) {
        GTEST_SKIP() << "this system refuses a socket for the kernel's announcements";
    }
    EXPECT_FALSE(events.takePowerSupplyChange());
    EXPECT_GE(events.descriptor(), 0);
}

}  // namespace
}  // namespace vorna
