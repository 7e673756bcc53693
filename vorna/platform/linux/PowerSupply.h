// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The device's batteries as reported by the kernel.

#include <vorna/platform/System.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// The state of one battery, in the kernel's terms.
enum class ChargingStatus : std::uint8_t { unknown, charging, discharging, notCharging, full };

/// One battery that powers the device.
struct Battery {
    /// From 0 to 1; std::nullopt if the battery does not report it.
    std::optional<double> level;
    ChargingStatus status = ChargingStatus::unknown;
    /// Capacity when full, in µWh or µAh; batteries report one of the two.
    std::optional<double> fullEnergy;
    std::optional<double> fullCharge;
};

/// Parses the contents of a battery's "status" file, such as "Not charging".
ChargingStatus chargingStatus(std::string_view text);

/// Combines all batteries into one, as the user sees them. The level is the mean weighted by capacity if all
/// report it in the same unit, else the plain mean. The state is that of the most active battery: charging,
/// then discharging, then full. One that is not charging is between its limits for charging while the device
/// has external power, which counts as charging, and otherwise unplugged. Without a battery the level is -1
/// and the state unknown. Monitoring is left false.
BatteryFacts combined(const std::vector<Battery>& batteries, bool hasExternalPower);

/// Reads the batteries of the system under the root folder. Those of mice, headsets and other devices are not
/// queried, since that may wake them; an empty battery bay does not count.
std::vector<Battery> readBatteries(const std::string& root);

/// Reads whether the device is supplied by the mains, a USB port or a charging pad. A UPS does not count: it
/// is a battery itself.
bool hasExternalPower(const std::string& root);

/// Reads all of that and combines it.
BatteryFacts readBatteryFacts(const std::string& root);

}  // namespace vorna
