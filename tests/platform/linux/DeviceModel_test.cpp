// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/DeviceModel.h>

#include <tests/platform/linux/SystemTree.h>

#include <gtest/gtest.h>

namespace vorna {
namespace {

TEST(DeviceModel, ComesFromTheDeviceTreeWithoutItsZeroByte) {
    EXPECT_EQ(deviceModel(std::string("Pine64 PinePhone (1.2)\0", 23), "Product", "aarch64"),
              "Pine64 PinePhone (1.2)");
}

TEST(DeviceModel, IsTheProductNameWithoutADeviceTree) {
    EXPECT_EQ(deviceModel(std::nullopt, "XPS 13 9310\n", "x86_64"), "XPS 13 9310");
    EXPECT_EQ(deviceModel(std::string(1, '\0'), "XPS 13 9310\n", "x86_64"), "XPS 13 9310");
}

TEST(DeviceModel, IsTheMachineNameIfFirmwareHasNoProductName) {
    EXPECT_EQ(deviceModel(std::nullopt, std::nullopt, "x86_64"), "x86_64");
    EXPECT_EQ(deviceModel("", " \n", "x86_64"), "x86_64");
}

class UnfilledProductName : public testing::TestWithParam<const char*> {};

TEST_P(UnfilledProductName, IsIgnored) {
    EXPECT_EQ(deviceModel(std::nullopt, std::string(GetParam()) + "\n", "x86_64"), "x86_64");
}

INSTANTIATE_TEST_SUITE_P(Names, UnfilledProductName,
                         testing::Values("To be filled by O.E.M.", "To Be Filled By O.E.M.",
                                         "System Product Name", "Default string", "Not Specified", "None",
                                         "OEM", "0"));

TEST(DeviceModel, AProductNameThatOnlyBeginsLikeAPlaceholderIsUsed) {
    EXPECT_EQ(deviceModel(std::nullopt, "None Such 3000", "x86_64"), "None Such 3000");
}

struct Row {
    const char* tree;
    const char* model;
};

TEST(DeviceModel, IsCorrectForTheStoredSystems) {
    for (const Row& row :
         {Row{"pinephone-postmarketos", "Pine64 PinePhone (1.2)"}, Row{"librem5-pureos", "Purism Librem 5r4"},
          Row{"thinkpad-fedora", "20EXAMPLE0"}, Row{"desktop-debian", "x86_64"},
          Row{"raspberry-pi", "Raspberry Pi 4 Model B Rev 1.4"},
          Row{"olimex-lime2-archlinuxarm", "Olimex A20-OLinuXino-LIME2"}, Row{"alpine-container", "x86_64"},
          Row{"laptop-opensuse", "Example Book 14"}}) {
        EXPECT_EQ(readDeviceModel(tests::systemTree(row.tree), "x86_64"), row.model) << row.tree;
    }
}

}  // namespace
}  // namespace vorna
