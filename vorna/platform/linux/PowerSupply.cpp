// SPDX-License-Identifier: Apache-2.0
#include <vorna/platform/linux/PowerSupply.h>

#include <vorna/platform/linux/SystemFile.h>

#include <algorithm>
#include <charconv>
#include <system_error>

namespace vorna {

namespace {

std::optional<double> readNumber(const std::string& path) {
    const std::optional<std::string> text = readSystemValue(path);
    if (!text) {
        return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, number);
    if (error != std::errc{} || stop != end) {
        return std::nullopt;
    }
    return static_cast<double>(number);
}

bool belongsToTheDevice(const std::string& supply) {
    return readSystemValue(supply + "/scope") != "Device";
}

bool isBattery(const std::string& supply) {
    return readSystemValue(supply + "/type") == "Battery" && belongsToTheDevice(supply) &&
           readSystemValue(supply + "/present") != "0";
}

bool isPluggedIn(const std::string& supply) {
    const std::optional<std::string> type = readSystemValue(supply + "/type");
    if (!type || *type == "Battery" || *type == "UPS" || !belongsToTheDevice(supply)) {
        return false;
    }
    const std::optional<std::string> online = readSystemValue(supply + "/online");
    // 2: at a voltage that has been negotiated.
    return online == "1" || online == "2";
}

/// The folders of all power supplies, batteries included.
std::vector<std::string> powerSupplies(const std::string& root) {
    const std::string folder = root + "/sys/class/power_supply/";
    std::vector<std::string> supplies = namesInFolder(folder);
    for (std::string& supply : supplies) {
        supply.insert(0, folder);
    }
    return supplies;
}

std::optional<double> ratio(std::optional<double> part, std::optional<double> whole) {
    if (!part || !whole || *whole <= 0) {
        return std::nullopt;
    }
    return std::clamp(*part / *whole, 0.0, 1.0);
}

Battery readBattery(const std::string& supply) {
    Battery battery;
    if (const auto status = readSystemValue(supply + "/status")) {
        battery.status = chargingStatus(*status);
    }
    battery.fullEnergy = readNumber(supply + "/energy_full");
    battery.fullCharge = readNumber(supply + "/charge_full");
    battery.level = ratio(readNumber(supply + "/capacity"), 100);
    // Not every driver reports the ratio.
    if (!battery.level) {
        battery.level = ratio(readNumber(supply + "/energy_now"), battery.fullEnergy);
    }
    if (!battery.level) {
        battery.level = ratio(readNumber(supply + "/charge_now"), battery.fullCharge);
    }
    return battery;
}

std::optional<double> weightedLevel(const std::vector<Battery>& batteries,
                                    std::optional<double> Battery::*weight) {
    double sum = 0;
    double total = 0;
    for (const Battery& battery : batteries) {
        if (!battery.level) {
            continue;
        }
        if (battery.*weight <= 0) {
            return std::nullopt;
        }
        sum += *battery.level * *(battery.*weight);
        total += *(battery.*weight);
    }
    return ratio(sum, total);
}

std::optional<double> meanLevel(const std::vector<Battery>& batteries) {
    double sum = 0;
    double count = 0;
    for (const Battery& battery : batteries) {
        sum += battery.level.value_or(0);
        count += battery.level ? 1 : 0;
    }
    return ratio(sum, count);
}

}  // namespace

ChargingStatus chargingStatus(std::string_view text) {
    const std::string_view status = trimmed(text);
    if (status == "Charging") {
        return ChargingStatus::charging;
    }
    if (status == "Discharging") {
        return ChargingStatus::discharging;
    }
    if (status == "Not charging") {
        return ChargingStatus::notCharging;
    }
    return status == "Full" ? ChargingStatus::full : ChargingStatus::unknown;
}

BatteryFacts combined(const std::vector<Battery>& batteries, bool hasExternalPower) {
    const auto any = [&](ChargingStatus status) {
        return std::ranges::any_of(batteries,
                                   [&](const Battery& battery) { return battery.status == status; });
    };
    BatteryFacts facts;
    // Later ones take precedence.
    if (any(ChargingStatus::notCharging)) {
        facts.state = hasExternalPower ? BatteryState::charging : BatteryState::unplugged;
    }
    if (any(ChargingStatus::full)) {
        facts.state = BatteryState::full;
    }
    if (any(ChargingStatus::discharging)) {
        facts.state = BatteryState::unplugged;
    }
    if (any(ChargingStatus::charging)) {
        facts.state = BatteryState::charging;
    }
    std::optional<double> level = weightedLevel(batteries, &Battery::fullEnergy);
    if (!level) {
        level = weightedLevel(batteries, &Battery::fullCharge);
    }
    if (!level) {
        level = meanLevel(batteries);
    }
    if (level) {
        facts.level = static_cast<float>(*level);
    }
    return facts;
}

std::vector<Battery> readBatteries(const std::string& root) {
    std::vector<Battery> batteries;
    for (const std::string& supply : powerSupplies(root)) {
        if (isBattery(supply)) {
            batteries.push_back(readBattery(supply));
        }
    }
    return batteries;
}

bool hasExternalPower(const std::string& root) {
    const std::vector<std::string> supplies = powerSupplies(root);
    return std::ranges::any_of(supplies, isPluggedIn);
}

BatteryFacts readBatteryFacts(const std::string& root) {
    return combined(readBatteries(root), hasExternalPower(root));
}

}  // namespace vorna
