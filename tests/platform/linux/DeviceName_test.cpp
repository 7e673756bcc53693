// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/DeviceName.h>

#include <tests/platform/linux/SystemTree.h>

#include <gtest/gtest.h>

namespace vorna {
namespace {

TEST(DeviceName, IsTheNameThatTheUserHasGiven) {
    EXPECT_EQ(deviceName("PRETTY_HOSTNAME=\"Lennart's Tablet\"\nICON_NAME=computer-tablet\n", "tablet"),
              "Lennart's Tablet");
}

TEST(DeviceName, IsTheHostNameIfTheUserHasGivenNone) {
    EXPECT_EQ(deviceName(std::nullopt, "tablet"), "tablet");
    EXPECT_EQ(deviceName("CHASSIS=tablet\n", "tablet"), "tablet");
    EXPECT_EQ(deviceName("PRETTY_HOSTNAME=\"\"\n", "tablet"), "tablet");
}

TEST(DeviceName, IsCorrectForTheStoredSystems) {
    EXPECT_EQ(readDeviceName(tests::systemTree("pinephone-postmarketos"), "host"),
              "Ayşe'nin \"küçük\" telefonu");
    EXPECT_EQ(readDeviceName(tests::systemTree("laptop-opensuse"), "host"), "host");
    EXPECT_EQ(readDeviceName(tests::systemTree("alpine-container"), "host"), "host");
}

}  // namespace
}  // namespace vorna
