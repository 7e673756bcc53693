// SPDX-License-Identifier: Apache-2.0
#include <tools/preview/Device.h>

#include <gtest/gtest.h>

#include <set>

namespace vorna::preview {
namespace {

TEST(Devices, AreFoundByName) {
    const auto device = standardDevice("390x844");
    ASSERT_TRUE(device);
    EXPECT_EQ(device->size, QSize(390, 844));
    EXPECT_EQ(device->safeArea, QMargins(0, 47, 0, 34));
    EXPECT_EQ(text(device->safeArea), "47,0,34,0");
}

TEST(Devices, WithUnknownNamesAreNotFound) {
    EXPECT_FALSE(standardDevice("391x844"));
    EXPECT_FALSE(standardDevice(""));
}

TEST(Devices, AreNamedByTheirSizesSmallestFirst) {
    std::set<std::string> names;
    int before = 0;
    for (const Device& device : standardDevices()) {
        EXPECT_EQ(device.name, text(device.size));
        EXPECT_GT(device.size.height(), before);
        EXPECT_GE(device.safeArea.top(), 20) << device.name << " has a status bar at least";
        before = device.size.height();
        names.insert(device.name);
    }
    EXPECT_EQ(names,
              (std::set<std::string>{"320x568", "375x667", "414x736", "390x844", "414x896", "820x1180"}));
}

}  // namespace
}  // namespace vorna::preview
