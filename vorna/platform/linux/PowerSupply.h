// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The device's batteries as the kernel reports them.

#include <vorna/platform/System.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna {

/// What one battery does, in the kernel's terms.
enum class ChargingStatus : std::uint8_t { unknown, charging, discharging, notCharging, full };

/// One battery that powers the device.
struct Battery {
    /// From 0 to 1; absent when the battery does not say.
    std::optional<double> level;
    ChargingStatus status = ChargingStatus::unknown;
    /// What it holds when full, in µWh or in µAh; batteries fill in one of the two.
    std::optional<double> fullEnergy;
    std::optional<double> fullCharge;
};

/// The contents of a battery's "status" file, as in "Not charging".
ChargingStatus chargingStatus(std::string_view text);

/// All batteries as one, as the user sees them. The level is the mean by what each holds when full, where all
/// say so in the same unit, else the plain mean. The state is that of the busiest battery: one that charges,
/// then one that discharges, then a full one. Without any battery the level is -1 and the state unknown.
/// Monitoring is left false.
BatteryFacts combined(const std::vector<Battery>& batteries);

/// The batteries of the system under the root folder. Those of mice, headsets and other devices are not
/// asked, since a question may wake them; an empty battery bay does not count.
std::vector<Battery> readBatteries(const std::string& root);

}  // namespace vorna
