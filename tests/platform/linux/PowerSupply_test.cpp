// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/PowerSupply.h>

#include <tests/platform/linux/SystemTree.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace vorna {
namespace {

using enum ChargingStatus;

BatteryFacts batteryFacts(float level, BatteryState state) {
    return BatteryFacts{.level = level, .state = state, .isMonitoringEnabled = false};
}

TEST(ChargingStatusText, IsParsedAsTheKernelWritesIt) {
    EXPECT_EQ(chargingStatus("Charging\n"), charging);
    EXPECT_EQ(chargingStatus("Discharging\n"), discharging);
    EXPECT_EQ(chargingStatus("Not charging\n"), notCharging);
    EXPECT_EQ(chargingStatus("Full\n"), full);
    EXPECT_EQ(chargingStatus("Unknown\n"), unknown);
    EXPECT_EQ(chargingStatus("charging\n"), unknown);
    EXPECT_EQ(chargingStatus(""), unknown);
}

BatteryState stateOf(std::initializer_list<ChargingStatus> statuses, bool hasExternalPower = false) {
    std::vector<Battery> batteries;
    for (const ChargingStatus status : statuses) {
        batteries.push_back(Battery{.level = 0.5, .status = status, .fullEnergy = {}, .fullCharge = {}});
    }
    return combined(batteries, hasExternalPower).state;
}

TEST(BatteryStateOfTheDevice, FollowsItsOneBattery) {
    EXPECT_EQ(stateOf({charging}), BatteryState::charging);
    EXPECT_EQ(stateOf({discharging}), BatteryState::unplugged);
    EXPECT_EQ(stateOf({notCharging}), BatteryState::unplugged);
    EXPECT_EQ(stateOf({full}), BatteryState::full);
    EXPECT_EQ(stateOf({unknown}), BatteryState::unknown);
}

TEST(BatteryStateOfTheDevice, FollowsTheMostActiveOfSeveralBatteries) {
    EXPECT_EQ(stateOf({full, charging}), BatteryState::charging);
    EXPECT_EQ(stateOf({charging, discharging}), BatteryState::charging);
    EXPECT_EQ(stateOf({full, discharging}), BatteryState::unplugged);
    EXPECT_EQ(stateOf({unknown, discharging}), BatteryState::unplugged);
    EXPECT_EQ(stateOf({notCharging, full}), BatteryState::full);
    EXPECT_EQ(stateOf({full, unknown}), BatteryState::full);
    EXPECT_EQ(stateOf({notCharging, unknown}), BatteryState::unplugged);
}

TEST(BatteryStateOfTheDevice, IsChargingIfItIsPluggedInAndNotChargingAtPresent) {
    EXPECT_EQ(stateOf({notCharging}, true), BatteryState::charging);
    EXPECT_EQ(stateOf({notCharging, unknown}, true), BatteryState::charging);
}

TEST(BatteryStateOfTheDevice, IsItsBatterysOwnIfThatSaysMoreThanThePlug) {
    EXPECT_EQ(stateOf({discharging}, true), BatteryState::unplugged);
    EXPECT_EQ(stateOf({notCharging, discharging}, true), BatteryState::unplugged);
    EXPECT_EQ(stateOf({full}, true), BatteryState::full);
    EXPECT_EQ(stateOf({notCharging, full}, true), BatteryState::full);
    EXPECT_EQ(stateOf({charging}, true), BatteryState::charging);
    EXPECT_EQ(stateOf({unknown}, true), BatteryState::unknown);
    EXPECT_EQ(stateOf({}, true), BatteryState::unknown);
}

BatteryFacts combinedOf(const std::vector<Battery>& batteries) {
    return combined(batteries, false);
}

TEST(BatteryLevelOfTheDevice, IsTheMeanWeightedByCapacity) {
    EXPECT_FLOAT_EQ(combinedOf({{.level = 1.0, .status = full, .fullEnergy = 30e6, .fullCharge = {}},
                                {.level = 0.2, .status = full, .fullEnergy = 10e6, .fullCharge = {}}})
                        .level,
                    0.8F);
    EXPECT_FLOAT_EQ(combinedOf({{.level = 1.0, .status = full, .fullEnergy = {}, .fullCharge = 1e6},
                                {.level = 0.2, .status = full, .fullEnergy = {}, .fullCharge = 3e6}})
                        .level,
                    0.4F);
}

TEST(BatteryLevelOfTheDevice, IsThePlainMeanIfTheCapacitiesCannotBeCompared) {
    EXPECT_FLOAT_EQ(combinedOf({{.level = 1.0, .status = full, .fullEnergy = 30e6, .fullCharge = {}},
                                {.level = 0.2, .status = full, .fullEnergy = {}, .fullCharge = 3e6}})
                        .level,
                    0.6F);
    EXPECT_FLOAT_EQ(combinedOf({{.level = 1.0, .status = full, .fullEnergy = 0.0, .fullCharge = {}},
                                {.level = 0.2, .status = full, .fullEnergy = 5e6, .fullCharge = {}}})
                        .level,
                    0.6F);
}

TEST(BatteryLevelOfTheDevice, IgnoresABatteryThatDoesNotReportIt) {
    EXPECT_EQ(combinedOf({{.level = 0.5, .status = full, .fullEnergy = {}, .fullCharge = {}},
                          {.level = {}, .status = unknown, .fullEnergy = {}, .fullCharge = {}}}),
              batteryFacts(0.5F, BatteryState::full));
    EXPECT_EQ(combinedOf({{.level = {}, .status = charging, .fullEnergy = 5e6, .fullCharge = {}}}),
              batteryFacts(-1, BatteryState::charging));
}

TEST(BatteryLevelOfTheDevice, IsUnknownWithoutABattery) {
    EXPECT_EQ(combinedOf({}), batteryFacts(-1, BatteryState::unknown));
}

TEST(BatteryLevelOfTheDevice, OfAnEmptyBatteryIsZeroNotUnknown) {
    EXPECT_EQ(combinedOf({{.level = 0.0, .status = charging, .fullEnergy = {}, .fullCharge = {}}}),
              batteryFacts(0, BatteryState::charging));
}

struct Row {
    const char* tree = nullptr;
    BatteryFacts battery;
};

TEST(BatteryOfTheDevice, IsCorrectForTheStoredSystems) {
    for (const Row& row :
         {Row{"pinephone-postmarketos", batteryFacts(0.43F, BatteryState::unplugged)},
          Row{"librem5-pureos", batteryFacts(0.81F, BatteryState::charging)},
          // 7 % of 66.22 Wh and 80 % of 17.94 Wh, neither charging, on the mains.
          Row{"thinkpad-fedora",
              batteryFacts((66.22F * 0.07F + 17.94F * 0.80F) / (66.22F + 17.94F), BatteryState::charging)},
          Row{"desktop-debian", batteryFacts(-1, BatteryState::unknown)},
          Row{"raspberry-pi", batteryFacts(-1, BatteryState::unknown)},
          Row{"olimex-lime2-archlinuxarm", batteryFacts(-1, BatteryState::unknown)},
          Row{"alpine-container", batteryFacts(-1, BatteryState::unknown)},
          // 1.26 Ah of 2.8 Ah: this battery does not report a percentage.
          Row{"laptop-opensuse", batteryFacts(0.45F, BatteryState::full)}}) {
        const BatteryFacts battery = readBatteryFacts(tests::systemTree(row.tree));
        EXPECT_FLOAT_EQ(battery.level, row.battery.level) << row.tree;
        EXPECT_EQ(battery.state, row.battery.state) << row.tree;
    }
}

struct Supply {
    const char* type = nullptr;
    const char* online = nullptr;
    bool isPower = false;
};

TEST(ExternalPower, ComesFromASupplyThatIsOnline) {
    for (const Supply& supply :
         {Supply{"Mains", "1", true}, Supply{"Mains", "0", false}, Supply{"USB", "1", true},
          Supply{"USB", "2", true}, Supply{"Wireless", "1", true}, Supply{"Mains", "yes", false},
          Supply{"Mains", "", false}, Supply{"Battery", "1", false}, Supply{"UPS", "1", false},
          Supply{"", "1", false}}) {
        const support::TemporaryFolder folder;
        folder.write("sys/class/power_supply/AC/type", std::string(supply.type) + '\n');
        folder.write("sys/class/power_supply/AC/online", std::string(supply.online) + '\n');
        EXPECT_EQ(hasExternalPower(folder.path()), supply.isPower) << supply.type << ' ' << supply.online;
    }
}

TEST(ExternalPower, IsNotThatOfAnotherDevice) {
    const support::TemporaryFolder folder;
    folder.write("sys/class/power_supply/pad/type", "USB\n");
    folder.write("sys/class/power_supply/pad/online", "1\n");
    folder.write("sys/class/power_supply/pad/scope", "Device\n");
    EXPECT_FALSE(hasExternalPower(folder.path()));
}

TEST(ExternalPower, IsAbsentWithoutSupplies) {
    const support::TemporaryFolder folder;
    EXPECT_FALSE(hasExternalPower(folder.path()));
}

TEST(BatteryOfTheDevice, FollowsThePlug) {
    const support::TemporaryFolder folder;
    folder.write("sys/class/power_supply/BAT0/type", "Battery\n");
    folder.write("sys/class/power_supply/BAT0/status", "Not charging\n");
    folder.write("sys/class/power_supply/AC/type", "Mains\n");
    folder.write("sys/class/power_supply/AC/online", "1\n");
    EXPECT_EQ(readBatteryFacts(folder.path()).state, BatteryState::charging);
    folder.replace("sys/class/power_supply/AC/online", "0\n");
    EXPECT_EQ(readBatteryFacts(folder.path()).state, BatteryState::unplugged);
}

TEST(BatteryOfTheDevice, NonsenseInTheFilesIsIgnored) {
    const support::TemporaryFolder folder;
    const std::string battery = "sys/class/power_supply/BAT0/";
    folder.write(battery + "type", "Battery\n");
    for (const char* const capacity : {"", "x", "5 %", "99999999999999999999999", "0x10"}) {
        folder.write(battery + "capacity", capacity);
        EXPECT_EQ(readBatteryFacts(folder.path()), batteryFacts(-1, BatteryState::unknown)) << capacity;
    }
}

TEST(BatteryOfTheDevice, ALevelOutOfRangeIsClamped) {
    const support::TemporaryFolder folder;
    const std::string battery = "sys/class/power_supply/BAT0/";
    folder.write(battery + "type", "Battery\n");
    folder.write(battery + "capacity", "104\n");
    EXPECT_EQ(readBatteryFacts(folder.path()).level, 1.0F);
    folder.write(battery + "capacity", "-3\n");
    EXPECT_EQ(readBatteryFacts(folder.path()).level, 0.0F);
}

}  // namespace
}  // namespace vorna
